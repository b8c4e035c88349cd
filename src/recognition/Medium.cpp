#include "recognition/Medium.h"

#include "recognition/CdioMedium.h"
#include "recognition/ImageFileMedium.h"

#include <QFileInfo>

namespace vinora {

std::unique_ptr<Medium> openMedium(const QString& drive)
{
    const QFileInfo info(drive);
    if (!info.exists() || info.isDir()) {
        return nullptr;
    }
    const QString suffix = info.suffix().toLower();
    const bool cdImage = suffix == u"cue" || suffix == u"nrg" || suffix == u"toc";
    if (info.isFile() && !cdImage) {
        return ImageFileMedium::open(drive);
    }
    return CdioMedium::open(drive, info.isFile());
}

} // namespace vinora
