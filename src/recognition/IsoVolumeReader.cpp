#include "recognition/IsoVolumeReader.h"

#include "recognition/VolumeIdentity.h"

#include <QIODevice>
#include <QStringList>
#include <QtEndian>
#include <algorithm>
#include <limits>

namespace vinora {
namespace {

constexpr quint8 kHidden = 0x01;
constexpr quint8 kDirectory = 0x02;
constexpr quint8 kMoreExtents = 0x80;
// No directory of a CD or DVD needs more; a larger size means a damaged record.
constexpr quint64 kLargestDirectory = 64ull * 1024 * 1024;
// Rock Ridge names end at 255 bytes on every system that writes them; a few continuation
// areas hold them with room to spare. More, or a larger area, is a damaged record.
constexpr int kMostContinuations = 16;
constexpr quint32 kLargestContinuation = 8 * kSectorSize;
// The flags of an "NM" entry.
constexpr quint8 kNameContinues = 0x01;
constexpr quint8 kNameOfItselfOrParent = 0x06;

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

// Where the system use area of a record begins: after its name and the pad byte that
// keeps it at an even offset.
int systemUseStart(int nameLength)
{
    return 33 + nameLength + ((nameLength % 2 == 0) ? 1 : 0);
}

// The bytes that precede the entries of every other system use area, as the root's "."
// record announces them in its "SP" entry; 0 when it has none.
int suspSkipOf(const Sector& rootSector)
{
    const unsigned char* r = rootSector.data();
    const int length = r[0];
    const int nameLength = r[32];
    const int at = systemUseStart(nameLength);
    if (length < 34 || 33 + nameLength > length || at + 7 > length) {
        return 0;
    }
    const bool sp =
        r[at] == 'S' && r[at + 1] == 'P' && r[at + 2] >= 7 && r[at + 4] == 0xBE && r[at + 5] == 0xEF;
    return sp ? r[at + 6] : 0;
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

QString jolietName(const unsigned char* name, int nameLength)
{
    QString text(nameLength / 2, Qt::Uninitialized);
    QChar* out = text.data();
    for (int i = 0; i + 1 < nameLength; i += 2) {
        *out++ = QChar(char16_t(name[i] << 8 | name[i + 1]));
    }
    const qsizetype version = text.lastIndexOf(u';');
    if (version >= 0) {
        text.truncate(version);
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
    std::unique_ptr<IsoVolumeReader> reader(
        new IsoVolumeReader(std::move(medium), root, found.joliet.has_value(), found.highSierra));
    Sector first;
    if (!reader->m_joliet && reader->m_medium->readSector(static_cast<qint32>(root.extent), first)) {
        reader->m_suspSkip = suspSkipOf(first);
    }
    return reader;
}

IsoVolumeReader::IsoVolumeReader(std::unique_ptr<Medium> medium, Record root, bool joliet, bool highSierra)
    : m_medium(std::move(medium)), m_root(std::move(root)), m_joliet(joliet), m_highSierra(highSierra),
      m_sectorsLeft(2 * qint64(m_medium->toc().leadoutLsn) + 1024),
      m_continuationSectorsLeft(2 * qint64(m_medium->toc().leadoutLsn) + 1024)
{
}

bool IsoVolumeReader::readCached(qint32 lsn, Sector& out)
{
    if (lsn != m_cachedLsn) {
        if (m_continuationSectorsLeft <= 0 || !m_medium->readSector(lsn, m_cachedSector)) {
            m_cachedLsn = -1;
            return false;
        }
        --m_continuationSectorsLeft;
        m_cachedLsn = lsn;
    }
    out = m_cachedSector;
    return true;
}

// The bytes of a continuation area, or nothing when it does not lie inside the disc.
QByteArray IsoVolumeReader::continuationArea(quint32 lsn, quint32 offset, quint32 length)
{
    const quint64 end = quint64(offset) + length;
    const quint64 sectors = (end + kSectorSize - 1) / kSectorSize;
    if (length == 0 || offset >= quint32(kSectorSize) || length > kLargestContinuation ||
        quint64(lsn) + sectors > quint64(std::max(m_medium->toc().leadoutLsn, 0))) {
        return {};
    }
    QByteArray bytes;
    Sector sector;
    for (quint64 i = 0; i < sectors; ++i) {
        if (!readCached(static_cast<qint32>(lsn + i), sector)) {
            return {};
        }
        bytes.append(reinterpret_cast<const char*>(sector.data()), kSectorSize);
    }
    return bytes.mid(offset, length);
}

// The entries of the record's own system use area, then of each continuation area ("CE")
// in turn. A chain that comes back to an area already read, runs too long or leaves the
// disc ends there; what was read so far counts.
IsoVolumeReader::RockRidge IsoVolumeReader::rockRidgeOf(const unsigned char* r, int nameLength,
                                                        int recordLength)
{
    RockRidge rr;
    bool nameComplete = false;
    const int start = systemUseStart(nameLength) + m_suspSkip;
    QByteArray area = start < recordLength
                          ? QByteArray(reinterpret_cast<const char*>(r) + start, recordLength - start)
                          : QByteArray();
    QList<std::pair<quint32, quint32>> visited;
    for (int hop = 0;; ++hop) {
        const auto* a = reinterpret_cast<const unsigned char*>(area.constData());
        const int size = static_cast<int>(area.size());
        std::optional<std::array<quint32, 3>> next;
        int at = 0;
        while (at + 4 <= size) {
            const int length = a[at + 2];
            if (length < 4 || at + length > size) {
                break;
            }
            const char s1 = static_cast<char>(a[at]);
            const char s2 = static_cast<char>(a[at + 1]);
            if (s1 == 'S' && s2 == 'T') {
                break; // the end of this area's entries
            }
            if (s1 == 'N' && s2 == 'M' && length >= 5 && !nameComplete &&
                (a[at + 4] & kNameOfItselfOrParent) == 0) {
                rr.name.append(reinterpret_cast<const char*>(a + at + 5), length - 5);
                rr.hasName = true;
                nameComplete = (a[at + 4] & kNameContinues) == 0;
            } else if (s1 == 'R' && s2 == 'E') {
                rr.relocated = true;
            } else if (s1 == 'C' && s2 == 'L' && length >= 12) {
                rr.childLink = le32(a + at + 4);
            } else if (s1 == 'C' && s2 == 'E' && length >= 28) {
                next = std::array<quint32, 3>{le32(a + at + 4), le32(a + at + 12), le32(a + at + 20)};
            }
            at += length;
        }
        if (!next || hop >= kMostContinuations) {
            break;
        }
        const std::pair<quint32, quint32> place{(*next)[0], (*next)[1]};
        if (visited.contains(place)) {
            break;
        }
        visited.append(place);
        area = continuationArea((*next)[0], (*next)[1], (*next)[2]);
        if (area.isEmpty()) {
            break;
        }
    }
    return rr;
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
            Record record = recordFrom(r, m_highSierra);
            if (m_joliet) {
                record.name = jolietName(r + 33, nameLength);
            } else {
                const RockRidge rr = rockRidgeOf(r, nameLength, length);
                if (rr.relocated) {
                    continue; // listed where its "CL" entry stands
                }
                record.name = rr.hasName ? QString::fromUtf8(rr.name) : plainIsoName(r + 33, nameLength);
                if (rr.childLink) {
                    record.folder = true;
                    record.extent = *rr.childLink;
                    record.size = 0; // read from the moved folder's own record when listed
                }
            }
            if (!usableEntryName(record.name)) {
                continue;
            }
            // A file of several extents comes as consecutive records, all but the last flagged.
            const bool more = r[m_highSierra ? 24 : 25] & kMoreExtents;
            if (continuing && !records.isEmpty()) {
                Record& file = records.last();
                file.extents.append({record.extent, record.size});
                file.size += record.size;
                continuing = more;
                continue;
            }
            if (more) {
                record.extents.append({record.extent, record.size});
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

// Hands `count` bytes of a file from `from` on to `sink`, extent by extent, a sector at a
// time; false when a sector cannot be read or the sink refuses.
bool IsoVolumeReader::readBytes(const Record& file, quint64 from, quint64 count,
                                const std::function<bool(const char*, qint64)>& sink)
{
    const QList<Extent> extents =
        file.extents.isEmpty() ? QList<Extent>{{file.extent, file.size}} : file.extents;
    quint64 start = 0; // of the extent at hand, within the file
    Sector sector;
    for (const Extent& extent : extents) {
        const quint64 end = start + extent.size;
        for (quint64 offset = std::max(from, start); offset < std::min(end, from + count);) {
            const quint64 inExtent = offset - start;
            const quint64 lsn = extent.lsn + inExtent / kSectorSize;
            if (lsn > quint64(std::numeric_limits<qint32>::max()) ||
                !m_medium->readSector(static_cast<qint32>(lsn), sector)) {
                return false;
            }
            const quint64 skip = inExtent % kSectorSize;
            const quint64 take = std::min<quint64>({kSectorSize - skip, end - offset, from + count - offset});
            if (!sink(reinterpret_cast<const char*>(sector.data() + skip), qint64(take))) {
                return false;
            }
            offset += take;
        }
        start = end;
    }
    return true;
}

std::optional<QByteArray> IsoVolumeReader::tail(const QString& file, int count)
{
    const auto record = find(file);
    if (!record || record->folder) {
        return std::nullopt;
    }
    const quint64 from = record->size > quint64(count) ? record->size - count : 0;
    QByteArray bytes;
    const bool read = readBytes(*record, from, record->size - from, [&bytes](const char* data, qint64 size) {
        bytes.append(data, size);
        return true;
    });
    return read ? std::optional<QByteArray>(bytes) : std::nullopt;
}

bool IsoVolumeReader::copy(const QString& file, QIODevice& out, const std::function<bool()>& cancelled)
{
    const auto record = find(file);
    if (!record || record->folder) {
        return false;
    }
    return readBytes(*record, 0, record->size, [&](const char* data, qint64 size) {
        return !(cancelled && cancelled()) && out.write(data, size) == size;
    });
}

} // namespace vinora
