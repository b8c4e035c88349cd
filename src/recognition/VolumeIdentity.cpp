#include "recognition/VolumeIdentity.h"

#include <QtEndian>
#include <cstring>
#include <optional>

namespace vinora {
namespace {

constexpr qint32 kFirstDescriptor = 16;
constexpr int kMostDescriptors = 64;
// A data session after audio starts 11,250 frames (2:30) after the audio's lead-out.
constexpr qint32 kSessionGap = 11250;

quint16 le16(const Sector& s, int at)
{
    return qFromLittleEndian<quint16>(s.data() + at);
}
quint32 le32(const Sector& s, int at)
{
    return qFromLittleEndian<quint32>(s.data() + at);
}

QString trimmedLabel(QString text)
{
    while (!text.isEmpty() && (text.back() == u' ' || text.back() == QChar(0))) {
        text.chop(1);
    }
    return text;
}

IsoDescriptors scanIsoDescriptors(Medium& medium, qint32 base)
{
    IsoDescriptors found;
    Sector sector;
    for (qint32 lsn = base + kFirstDescriptor; lsn < base + kFirstDescriptor + kMostDescriptors; ++lsn) {
        if (!medium.readSector(lsn, sector)) {
            break;
        }
        const bool iso = std::memcmp(sector.data() + 1, "CD001", 5) == 0 && sector[6] == 1;
        const bool highSierra = std::memcmp(sector.data() + 9, "CDROM", 5) == 0 && sector[14] == 1;
        if (!iso && !highSierra) {
            break;
        }
        const unsigned type = iso ? sector[0] : sector[8];
        if (type == 255) {
            break;
        }
        if (type == 1 && !found.primary) {
            found.primary = sector;
            found.highSierra = !iso;
        }
        const bool jolietEscape = sector[88] == '%' && sector[89] == '/' &&
                                  (sector[90] == '@' || sector[90] == 'C' || sector[90] == 'E');
        if (iso && type == 2 && jolietEscape && !found.joliet) {
            found.joliet = sector;
        }
    }
    return found;
}

// Where the descriptors of the volume start: the last session, or on a disc whose audio
// tracks are followed by a data track, that track (an Enhanced CD's data session).
qint32 sessionBase(const Toc& toc)
{
    if (toc.lastSessionLsn > 0) {
        return toc.lastSessionLsn;
    }
    if (toc.tracks.size() >= 2 && !toc.tracks.last().audio && toc.tracks.first().audio) {
        return toc.tracks.last().startLsn;
    }
    return 0;
}

QString dstring(const Sector& s, int at, int length)
{
    const int used = s[at + length - 1];
    const unsigned compression = s[at];
    if (used <= 1 || used > length - 1) {
        return {};
    }
    QString text;
    if (compression == 8) {
        for (int i = 1; i < used; ++i) {
            text.append(QChar(char16_t(s[at + i])));
        }
    } else if (compression == 16) {
        for (int i = 1; i + 1 < used; i += 2) {
            text.append(QChar(char16_t((s[at + i] << 8) | s[at + i + 1])));
        }
    }
    return trimmedLabel(text);
}

std::optional<VolumeInfo> identifyUdf(Medium& medium)
{
    if (!hasUdfRecognition(medium)) {
        return std::nullopt;
    }
    const qint32 last = medium.toc().leadoutLsn - 1;
    Sector sector;
    std::optional<Sector> anchor;
    for (const qint32 candidate : {256, last, last - 256, 512}) {
        if (candidate > 0 && medium.readSector(candidate, sector) && le16(sector, 0) == 2) {
            anchor = sector;
            break;
        }
    }
    if (!anchor) {
        return std::nullopt;
    }
    const quint32 sequenceLength = le32(*anchor, 16) / kSectorSize;
    const qint32 sequenceStart = static_cast<qint32>(le32(*anchor, 20));
    QString primaryLabel;
    QString logicalLabel;
    std::optional<quint32> partitionStart;
    quint32 partitionLength = 0;
    for (quint32 i = 0; i < std::min<quint32>(sequenceLength, kMostDescriptors); ++i) {
        if (!medium.readSector(sequenceStart + static_cast<qint32>(i), sector)) {
            break;
        }
        const quint16 tag = le16(sector, 0);
        if (tag == 8) {
            break;
        }
        if (tag == 1 && primaryLabel.isEmpty()) {
            primaryLabel = dstring(sector, 24, 32);
        } else if (tag == 5 && !partitionStart) {
            partitionStart = le32(sector, 188);
            partitionLength = le32(sector, 192);
        } else if (tag == 6 && logicalLabel.isEmpty()) {
            logicalLabel = dstring(sector, 84, 128);
        }
    }
    if (!partitionStart) {
        return std::nullopt;
    }
    std::optional<Sector> fileSet;
    const quint32 searched = std::min<quint32>(partitionLength, 512);
    for (quint32 i = 0; i < searched; ++i) {
        if (medium.readSector(static_cast<qint32>(*partitionStart + i), sector) && le16(sector, 0) == 256) {
            fileSet = sector;
            break;
        }
    }
    if (!fileSet && medium.readSector(257, sector)) {
        fileSet = sector;
    }
    if (!fileSet) {
        return std::nullopt;
    }
    return VolumeInfo{true, logicalLabel.isEmpty() ? primaryLabel : logicalLabel, udfSerial(*fileSet), 255,
                      QStringLiteral("UDF")};
}

VolumeInfo isoVolume(const IsoDescriptors& found)
{
    VolumeInfo info;
    info.ok = true;
    info.fsName = QStringLiteral("CDFS");
    if (found.joliet) {
        const Sector& s = *found.joliet;
        QString label;
        for (int i = 0; i < 16; ++i) {
            label.append(QChar(char16_t((s[40 + 2 * i] << 8) | s[41 + 2 * i])));
        }
        info.label = trimmedLabel(label);
        info.serial = cdfsSerial(s);
        info.maxComponentLength = 110;
    } else {
        const Sector& s = *found.primary;
        const int at = found.highSierra ? 48 : 40;
        info.label = trimmedLabel(QString::fromLatin1(reinterpret_cast<const char*>(s.data() + at), 32));
        info.serial = cdfsSerial(s);
        info.maxComponentLength = 221;
    }
    return info;
}

} // namespace

bool hasUdfRecognition(Medium& medium)
{
    Sector sector;
    for (qint32 lsn = 16; lsn < 32; ++lsn) {
        if (!medium.readSector(lsn, sector)) {
            return false;
        }
        if (std::memcmp(sector.data() + 1, "BEA01", 5) == 0) {
            return true;
        }
    }
    return false;
}

IsoDescriptors findIsoDescriptors(Medium& medium)
{
    const qint32 base = sessionBase(medium.toc());
    IsoDescriptors found = scanIsoDescriptors(medium, base);
    if (!found.primary && base != 0) {
        found = scanIsoDescriptors(medium, 0);
    }
    return found;
}

LaneSums laneSums(const unsigned char* bytes, int count)
{
    LaneSums sums;
    for (int i = 0; i < count; ++i) {
        sums.lane[i % 4] = static_cast<quint8>(sums.lane[i % 4] + bytes[i]);
    }
    return sums;
}

quint32 cdfsSerial(const Sector& descriptor)
{
    const LaneSums s = laneSums(descriptor.data(), kSectorSize);
    return quint32(s.lane[0]) << 24 | quint32(s.lane[1]) << 16 | quint32(s.lane[2]) << 8 | s.lane[3];
}

quint32 udfSerial(const Sector& fileSetDescriptor)
{
    const LaneSums s = laneSums(fileSetDescriptor.data(), kSectorSize);
    return quint32(s.lane[3]) << 24 | quint32(s.lane[2]) << 16 | quint32(s.lane[1]) << 8 | s.lane[0];
}

quint32 packMsf(qint32 lsn)
{
    const quint32 x = static_cast<quint32>(lsn + kLeadInFrames);
    return (x / 4500) << 16 | ((x / 75) % 60) << 8 | (x % 75);
}

quint32 audioTocSerial(const Toc& toc)
{
    QList<TocTrack> tracks = toc.tracks;
    qint32 leadout = toc.leadoutLsn;
    // A data track after audio tracks is not counted; the audio ends a session gap before it.
    if (tracks.size() >= 2 && !tracks.last().audio && tracks[tracks.size() - 2].audio) {
        leadout = tracks.last().startLsn - kSessionGap;
        tracks.removeLast();
    }
    if (tracks.size() <= 2) {
        return packMsf(leadout);
    }
    quint32 serial = 0;
    for (const TocTrack& track : tracks) {
        serial += packMsf(track.startLsn);
    }
    return serial;
}

VolumeInfo identifyVolume(Medium& medium)
{
    const Toc& toc = medium.toc();
    if (toc.isEmpty()) {
        return {};
    }
    if (!toc.tracks.first().audio || toc.audioTrackCount() < toc.tracks.size()) {
        if (auto udf = identifyUdf(medium)) {
            return *udf;
        }
    }
    const IsoDescriptors found = findIsoDescriptors(medium);
    const bool allAudio = toc.audioTrackCount() == toc.tracks.size();
    if (allAudio || (toc.audioTrackCount() > 0 && !found.primary && toc.tracks.first().audio)) {
        return VolumeInfo{true, QStringLiteral("Audio CD"), audioTocSerial(toc), 221, QStringLiteral("CDFS")};
    }
    if (found.primary) {
        return isoVolume(found);
    }
    return {};
}

VolumeInfo readVolumeInfo(const QString& drive)
{
    const std::unique_ptr<Medium> medium = openMedium(drive);
    return medium ? identifyVolume(*medium) : VolumeInfo{};
}

} // namespace vinora
