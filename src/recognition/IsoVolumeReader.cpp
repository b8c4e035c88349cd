#include "recognition/IsoVolumeReader.h"

#include "recognition/VolumeIdentity.h"

#include <QStringList>
#include <QtEndian>
#include <algorithm>

namespace vinora {
namespace {

constexpr quint8 kHidden = 0x01;
constexpr quint8 kDirectory = 0x02;
constexpr quint8 kMoreExtents = 0x80;
// No directory of a CD or DVD needs more; a larger size means a damaged record.
constexpr quint64 kLargestDirectory = 64ull * 1024 * 1024;

quint32 le32(const unsigned char* at)
{
    return qFromLittleEndian<quint32>(at);
}

IsoVolumeReader::Record recordFrom(const unsigned char* r, bool highSierra)
{
    IsoVolumeReader::Record record;
    record.extent = le32(r + 2);
    record.size = le32(r + 10);
    const quint8 flags = r[highSierra ? 24 : 25];
    record.folder = flags & kDirectory;
    record.hidden = flags & kHidden;
    return record;
}

// The Rock Ridge entries of a record's system use area: its name ("NM"), whether it was
// moved elsewhere ("RE"), and where a moved folder stands ("CL").
struct RockRidge
{
    QByteArray name;
    bool hasName = false;
    bool relocated = false;
    std::optional<quint32> childLink;
};

RockRidge rockRidgeOf(const unsigned char* r, int nameLength, int recordLength)
{
    RockRidge rr;
    int at = 33 + nameLength + ((nameLength % 2 == 0) ? 1 : 0);
    while (at + 4 <= recordLength) {
        const int length = r[at + 2];
        if (length < 4 || at + length > recordLength) {
            break;
        }
        const char a = static_cast<char>(r[at]);
        const char b = static_cast<char>(r[at + 1]);
        if (a == 'N' && b == 'M' && length >= 5 && (r[at + 4] & 0x06) == 0) {
            rr.name.append(reinterpret_cast<const char*>(r + at + 5), length - 5);
            rr.hasName = true;
        } else if (a == 'R' && b == 'E') {
            rr.relocated = true;
        } else if (a == 'C' && b == 'L' && length >= 12) {
            rr.childLink = le32(r + at + 4);
        }
        at += length;
    }
    return rr;
}

QString plainIsoName(const unsigned char* name, int length)
{
    QString text = QString::fromLatin1(reinterpret_cast<const char*>(name), length);
    const qsizetype version = text.lastIndexOf(u';');
    if (version >= 0) {
        text.truncate(version);
    }
    if (text.endsWith(u'.')) {
        text.chop(1);
    }
    return text;
}

} // namespace

std::unique_ptr<VolumeReader> IsoVolumeReader::open(std::unique_ptr<Medium> medium)
{
    const IsoDescriptors found = findIsoDescriptors(*medium);
    if (!found.primary) {
        return nullptr;
    }
    const Sector& active = found.joliet ? *found.joliet : *found.primary;
    Record root = recordFrom(active.data() + (found.highSierra ? 180 : 156), found.highSierra);
    root.folder = true;
    if (root.size == 0 || root.size > kLargestDirectory) {
        return nullptr;
    }
    return std::unique_ptr<VolumeReader>(
        new IsoVolumeReader(std::move(medium), root, found.joliet.has_value(), found.highSierra));
}

IsoVolumeReader::IsoVolumeReader(std::unique_ptr<Medium> medium, Record root, bool joliet, bool highSierra)
    : m_medium(std::move(medium)), m_root(std::move(root)), m_joliet(joliet), m_highSierra(highSierra),
      m_sectorsLeft(2 * qint64(m_medium->toc().leadoutLsn) + 1024)
{
}

QString IsoVolumeReader::decodeName(const unsigned char* r, int nameLength, int recordLength,
                                    bool* skip) const
{
    const unsigned char* name = r + 33;
    if (m_joliet) {
        QString text;
        for (int i = 0; i + 1 < nameLength; i += 2) {
            text.append(QChar(char16_t(name[i] << 8 | name[i + 1])));
        }
        const qsizetype version = text.lastIndexOf(u';');
        return version >= 0 ? text.left(version) : text;
    }
    const RockRidge rr = rockRidgeOf(r, nameLength, recordLength);
    *skip = rr.relocated;
    return rr.hasName ? QString::fromUtf8(rr.name) : plainIsoName(name, nameLength);
}

std::optional<QList<IsoVolumeReader::Record>> IsoVolumeReader::readDirectory(const Record& directory)
{
    // A directory lies inside the disc; a larger one is a damaged record.
    const quint64 sectors = (directory.size + kSectorSize - 1) / kSectorSize;
    if (directory.size > kLargestDirectory ||
        quint64(directory.extent) + sectors > quint64(std::max(m_medium->toc().leadoutLsn, 0)) ||
        qint64(sectors) > m_sectorsLeft) {
        return std::nullopt;
    }
    m_sectorsLeft -= qint64(sectors);
    QList<Record> records;
    bool continuing = false;
    Sector sector;
    for (quint64 i = 0; i < sectors; ++i) {
        if (!m_medium->readSector(static_cast<qint32>(directory.extent + i), sector)) {
            return std::nullopt;
        }
        int at = 0;
        while (at + 34 <= kSectorSize) {
            const unsigned char* r = sector.data() + at;
            const int length = r[0];
            if (length == 0) {
                break; // the rest of the sector is padding
            }
            const int nameLength = r[32];
            if (length < 34 || at + length > kSectorSize || 33 + nameLength > length) {
                return std::nullopt;
            }
            at += length;
            if (nameLength == 1 && (r[33] == 0 || r[33] == 1)) {
                continue; // the folder itself and its parent
            }
            bool skip = false;
            Record record = recordFrom(r, m_highSierra);
            record.name = decodeName(r, nameLength, length, &skip);
            if (skip || record.name.isEmpty()) {
                continue;
            }
            if (!m_joliet) {
                if (const auto link = rockRidgeOf(r, nameLength, length).childLink) {
                    record.folder = true;
                    record.extent = *link;
                    record.size = 0; // read from the moved folder's own record when listed
                }
            }
            // A file of several extents comes as consecutive records, all but the last flagged.
            const bool more = r[m_highSierra ? 24 : 25] & kMoreExtents;
            if (continuing && !records.isEmpty()) {
                records.last().size += record.size;
                continuing = more;
                continue;
            }
            continuing = more;
            records.append(record);
        }
    }
    return records;
}

std::optional<QList<IsoVolumeReader::Record>> IsoVolumeReader::listing(const QString& folder,
                                                                       Record directory)
{
    if (const auto cached = m_cache.constFind(folder); cached != m_cache.constEnd()) {
        return *cached;
    }
    if (directory.size == 0) {
        // A moved folder: its size stands in its own "." record.
        Sector sector;
        if (!m_medium->readSector(static_cast<qint32>(directory.extent), sector) || sector[0] < 34) {
            return std::nullopt;
        }
        directory.size = le32(sector.data() + 10);
    }
    auto records = readDirectory(directory);
    if (records) {
        m_cache.insert(folder, *records);
    }
    return records;
}

// The folder is reached from the root step by step. A folder whose extent is its own or
// one of the folders it lies in (a damaged disc's cycle) is not entered, and no folder
// lies deeper than a disc nests.
std::optional<QList<IsoVolumeReader::Record>> IsoVolumeReader::folderRecords(const QString& folder)
{
    if (const auto cached = m_cache.constFind(folder); cached != m_cache.constEnd()) {
        return *cached;
    }
    const QStringList names = folder.split(u'/', Qt::SkipEmptyParts);
    if (names.size() > kDeepestFolder) {
        return std::nullopt;
    }
    Record directory = m_root;
    QList<quint32> entered{m_root.extent};
    QString path;
    for (const QString& name : names) {
        const auto records = listing(path, directory);
        if (!records) {
            return std::nullopt;
        }
        const auto step = std::find_if(records->begin(), records->end(),
                                       [&name](const Record& record) { return record.name == name; });
        if (step == records->end() || !step->folder || entered.contains(step->extent)) {
            return std::nullopt;
        }
        entered.append(step->extent);
        directory = *step;
        path = path.isEmpty() ? name : path + u'/' + name;
    }
    return listing(folder, directory);
}

std::optional<IsoVolumeReader::Record> IsoVolumeReader::find(const QString& path)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    const QString parent = slash < 0 ? QString() : path.left(slash);
    const QString name = path.mid(slash + 1);
    const auto records = folderRecords(parent);
    if (!records) {
        return std::nullopt;
    }
    for (const Record& record : *records) {
        if (record.name == name) {
            return record;
        }
    }
    return std::nullopt;
}

std::optional<QList<VolumeEntry>> IsoVolumeReader::list(const QString& folder)
{
    const auto records = folderRecords(folder);
    if (!records) {
        return std::nullopt;
    }
    QList<VolumeEntry> entries;
    for (const Record& record : *records) {
        entries.append({record.name, record.folder, record.folder ? 0 : qint64(record.size), record.hidden});
    }
    sortEntries(entries);
    return entries;
}

std::optional<QByteArray> IsoVolumeReader::tail(const QString& file, int count)
{
    const auto record = find(file);
    if (!record || record->folder) {
        return std::nullopt;
    }
    const quint64 from = record->size > quint64(count) ? record->size - count : 0;
    QByteArray bytes;
    Sector sector;
    for (quint64 offset = from - from % kSectorSize; offset < record->size; offset += kSectorSize) {
        if (!m_medium->readSector(static_cast<qint32>(record->extent + offset / kSectorSize), sector)) {
            return std::nullopt;
        }
        bytes.append(reinterpret_cast<const char*>(sector.data()), kSectorSize);
    }
    const qsizetype skip = static_cast<qsizetype>(from % kSectorSize);
    return bytes.mid(skip, static_cast<qsizetype>(record->size - from));
}

} // namespace vinora
