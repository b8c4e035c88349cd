#pragma once

#include "recognition/Toc.h"

#include <QString>
#include <array>
#include <memory>

namespace vinora {

inline constexpr int kSectorSize = 2048;
using Sector = std::array<unsigned char, kSectorSize>;

// The medium in a drive, as sectors of data and a table of contents. A drive is a device
// node or a disc image (ISO, CUE/BIN, NRG, cdrdao TOC).
class Medium
{
public:
    virtual ~Medium() = default;

    // The 2048 bytes of user data of a data sector; false when it cannot be read.
    virtual bool readSector(qint32 lsn, Sector& out) = 0;
    virtual const Toc& toc() const = 0;
    // The device node or image path (for libraries that open it themselves).
    virtual QString path() const = 0;
    // True for a plain file of 2048-byte sectors.
    virtual bool isPlainImage() const = 0;
};

// The medium in `drive`, or nothing when there is no usable medium: no disc, an empty
// tray, a missing, unreadable or damaged image, a folder. Never an error.
std::unique_ptr<Medium> openMedium(const QString& drive);

} // namespace vinora
