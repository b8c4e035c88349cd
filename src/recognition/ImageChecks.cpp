#include "recognition/ImageChecks.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QtEndian>

namespace vinora {
namespace {

// The chunks of a Nero footer never take more; the reader refuses a longer footer.
constexpr qint64 kLongestFooter = 4096;
constexpr int kMostTracks = 99;
// No sheet of 99 tracks comes near this.
constexpr qint64 kLongestSheet = 256 * 1024;

quint32 be32(const char* at)
{
    return qFromBigEndian<quint32>(at);
}

constexpr quint32 id(const char (&name)[5])
{
    return quint32(quint8(name[0])) << 24 | quint32(quint8(name[1])) << 16 | quint32(quint8(name[2])) << 8 |
           quint8(name[3]);
}

// Entry sizes of the chunks that carry tables.
constexpr quint32 kCueEntry = 8;
constexpr quint32 kEtnfEntry = 20;
constexpr quint32 kEtn2Entry = 32;
constexpr quint32 kDaoHeader = 22;
constexpr quint32 kDaoiEntry = 30;
constexpr quint32 kDaoxEntry = 42;
constexpr quint32 kCdTextPack = 18;

QByteArray readTail(const QString& path, qint64 count, qint64* size)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    *size = file.size();
    const qint64 from = std::max<qint64>(0, *size - count);
    if (!file.seek(from)) {
        return {};
    }
    return file.read(*size - from);
}

QByteArray readText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kLongestSheet) {
        return {};
    }
    return file.readAll();
}

// The next word of a sheet line: a quoted name or a run of non-blanks.
QByteArray word(const QByteArray& line, qsizetype* at)
{
    while (*at < line.size() && (line[*at] == ' ' || line[*at] == '\t')) {
        ++*at;
    }
    if (*at >= line.size()) {
        return {};
    }
    if (line[*at] == '"') {
        const qsizetype end = line.indexOf('"', *at + 1);
        if (end < 0) {
            return {};
        }
        const QByteArray text = line.mid(*at + 1, end - *at - 1);
        *at = end + 1;
        return text;
    }
    qsizetype end = *at;
    while (end < line.size() && line[end] != ' ' && line[end] != '\t') {
        ++end;
    }
    const QByteArray text = line.mid(*at, end - *at);
    *at = end;
    return text;
}

} // namespace

bool nrgLooksSound(const QByteArray& tail, qint64 fileSize)
{
    // `tail` holds the last bytes of the file, at least the whole footer when it is sound.
    if (fileSize < 12 || tail.size() < 12 || tail.size() > fileSize) {
        return false;
    }
    const char* end = tail.constData() + tail.size();
    qint64 chunksStart = 0;
    qint64 trailer = 0;
    if (be32(end - 12) == id("NER5")) {
        const quint64 offset = qFromBigEndian<quint64>(end - 8);
        if (offset > quint64(fileSize)) {
            return false;
        }
        chunksStart = qint64(offset);
        trailer = 12;
    } else if (be32(end - 8) == id("NERO")) {
        chunksStart = be32(end - 4);
        trailer = 8;
    } else {
        return false;
    }
    const qint64 chunksEnd = fileSize - trailer;
    if (chunksStart >= chunksEnd || fileSize - chunksStart > kLongestFooter ||
        fileSize - chunksStart > tail.size()) {
        return false;
    }
    const char* footer = end - (fileSize - chunksStart);
    const qint64 length = chunksEnd - chunksStart;
    qint64 at = 0;
    int tracks = 0;
    int trackTables = 0; // the reader takes one table of tracks only
    while (at + 8 <= length) {
        const quint32 chunk = be32(footer + at);
        const quint32 size = be32(footer + at + 4);
        if (quint64(size) > quint64(length - at - 8)) {
            return false;
        }
        switch (chunk) {
        case id("END!"):
            return tracks >= 1;
        case id("NERO"):
        case id("NER5"):
            return false;
        case id("CUES"):
        case id("CUEX"): {
            const quint32 entries = size / kCueEntry;
            if (size % kCueEntry != 0 || entries < 2 || entries % 2 != 0) {
                return false;
            }
            tracks += int(entries - 2) / 2;
            ++trackTables;
            break;
        }
        case id("ETNF"):
        case id("ETN2"): {
            const quint32 entry = chunk == id("ETNF") ? kEtnfEntry : kEtn2Entry;
            if (size % entry != 0) {
                return false;
            }
            tracks += int(size / entry);
            ++trackTables;
            break;
        }
        case id("DAOI"):
        case id("DAOX"): {
            const quint32 entry = chunk == id("DAOI") ? kDaoiEntry : kDaoxEntry;
            if (size < kDaoHeader + entry * quint32(std::max(tracks, 1))) {
                return false;
            }
            break;
        }
        case id("SINF"):
        case id("MTYP"):
            if (size != 4) {
                return false;
            }
            break;
        case id("CDTX"):
            if (size % kCdTextPack != 0) {
                return false;
            }
            break;
        default:
            break; // chunks the reader skips
        }
        if (tracks > kMostTracks || trackTables > 1) {
            return false;
        }
        at += 8 + qint64(size);
    }
    return false; // no "END!"
}

bool nrgFileLooksSound(const QString& path)
{
    qint64 size = 0;
    const QByteArray tail = readTail(path, kLongestFooter, &size);
    return nrgLooksSound(tail, size);
}

bool cueLooksSound(const QByteArray& text, const QString& folder)
{
    if (text.isEmpty() || text.size() > kLongestSheet || text.contains('\0')) {
        return false;
    }
    int files = 0;
    QList<int> tracks;
    for (QByteArray line : text.split('\n')) {
        line = line.trimmed();
        qsizetype at = 0;
        const QByteArray keyword = word(line, &at).toUpper();
        if (keyword == "FILE") {
            const QByteArray name = word(line, &at);
            if (name.isEmpty() || word(line, &at).isEmpty()) {
                return false;
            }
            const QString decoded = QFile::decodeName(name);
            const QFileInfo data(QDir::isAbsolutePath(decoded) ? decoded : QDir(folder).filePath(decoded));
            if (!data.isFile()) {
                return false;
            }
            ++files;
        } else if (keyword == "TRACK") {
            bool number = false;
            const int track = word(line, &at).toInt(&number);
            if (!number || track < 1 || track > kMostTracks || files == 0 || tracks.contains(track)) {
                return false;
            }
            tracks.append(track);
        }
    }
    return files > 0 && !tracks.isEmpty() && tracks.size() <= kMostTracks;
}

bool cueFileLooksSound(const QString& path)
{
    return cueLooksSound(readText(path), QFileInfo(path).absolutePath());
}

bool tocFileLooksSound(const QString& path)
{
    const QByteArray text = readText(path);
    return !text.isEmpty() && !text.contains('\0');
}

bool cdImageLooksSound(const QString& path, const QString& suffix)
{
    if (suffix == u"nrg") {
        return nrgFileLooksSound(path);
    }
    if (suffix == u"cue") {
        return cueFileLooksSound(path);
    }
    if (suffix == u"toc") {
        return tocFileLooksSound(path);
    }
    return false;
}

} // namespace vinora
