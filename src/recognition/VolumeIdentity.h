#pragma once

#include "recognition/Medium.h"

#include <QString>
#include <optional>

namespace vinora {

// What the volume query tells about the medium in a drive, computed the way the desktop
// system that made older catalogues computed it, so that their discs are still recognised:
// the serial, the label, the file system name and the maximum component length.
struct VolumeInfo
{
    bool ok = false;
    QString label;
    quint32 serial = 0;
    quint32 maxComponentLength = 0;
    QString fsName;
};

// The volume information of the medium in `drive`; `ok` false for no usable medium.
VolumeInfo readVolumeInfo(const QString& drive);
VolumeInfo identifyVolume(Medium& medium);

// The ISO 9660 volume descriptors of a medium: the primary and the Joliet one, read from
// the last session (or the start of the disc when the last session has none).
struct IsoDescriptors
{
    std::optional<Sector> primary;
    std::optional<Sector> joliet;
    bool highSierra = false;
};
IsoDescriptors findIsoDescriptors(Medium& medium);
// True when the medium carries UDF's volume recognition sequence.
bool hasUdfRecognition(Medium& medium);

// The building blocks, for tests and tools.
struct LaneSums
{
    quint8 lane[4] = {0, 0, 0, 0};
};
// Four 8-bit sums wrapping at 256; byte i goes into lane i mod 4.
LaneSums laneSums(const unsigned char* bytes, int count);
quint32 cdfsSerial(const Sector& descriptor);       // lanes 0..3 from high to low byte
quint32 udfSerial(const Sector& fileSetDescriptor); // lanes 3..0 from high to low byte
// The serial of an audio disc from its table of contents.
quint32 audioTocSerial(const Toc& toc);
// An LSN as a packed binary minutes/seconds/frames value of absolute time.
quint32 packMsf(qint32 lsn);

} // namespace vinora
