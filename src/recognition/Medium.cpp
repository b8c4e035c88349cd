#include "recognition/Medium.h"

#include "recognition/CdioMedium.h"
#include "recognition/ImageChecks.h"
#include "recognition/ImageFileMedium.h"
#include "recognition/ImageProbe.h"
#include "recognition/IsoVolumeReader.h"
#include "recognition/VolumeIdentity.h"

#include <QFileInfo>

namespace vinora {
namespace {

// The program's own work on a CD image, done first in a child process: the medium and its
// table of contents, the volume identity, and every folder as a scan reads them.
bool cdImageSurvives(const QString& path, CdioMedium::Source source)
{
    return imageSurvivesProbe(path, ProbeKind::CdImage, [path, source] {
        std::unique_ptr<Medium> medium = CdioMedium::open(path, source);
        if (!medium) {
            return;
        }
        (void)identifyVolume(*medium);
        if (const auto volume = IsoVolumeReader::open(std::move(medium))) {
            walkAsScan(*volume);
        }
    });
}

} // namespace

std::unique_ptr<Medium> openMedium(const QString& drive)
{
    const QFileInfo info(drive);
    if (!info.exists() || info.isDir()) {
        return nullptr;
    }
    if (!info.isFile()) {
        return CdioMedium::open(drive, CdioMedium::Source::Device);
    }
    const QString suffix = info.suffix().toLower();
    CdioMedium::Source source = CdioMedium::Source::Device;
    if (suffix == u"cue") {
        source = CdioMedium::Source::CueSheet;
    } else if (suffix == u"nrg") {
        source = CdioMedium::Source::Nero;
    } else if (suffix == u"toc") {
        source = CdioMedium::Source::CdrdaoToc;
    } else {
        return ImageFileMedium::open(drive);
    }
    if (!cdImageLooksSound(drive, suffix) || !cdImageSurvives(drive, source)) {
        return nullptr;
    }
    return CdioMedium::open(drive, source);
}

} // namespace vinora
