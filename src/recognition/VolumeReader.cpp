#include "recognition/VolumeReader.h"

#include "frame/TextRules.h"
#include "recognition/FolderVolumeReader.h"
#include "recognition/IsoVolumeReader.h"
#include "recognition/Medium.h"
#include "recognition/MountPoints.h"
#include "recognition/UdfVolumeReader.h"
#include "recognition/VolumeIdentity.h"

#include <algorithm>

namespace vinora {

void sortEntries(QList<VolumeEntry>& entries)
{
    std::stable_sort(entries.begin(), entries.end(), [](const VolumeEntry& a, const VolumeEntry& b) {
        return compareText(a.name, b.name) < 0;
    });
}

std::unique_ptr<VolumeReader> openFolderReader(const QString& root)
{
    return std::make_unique<FolderVolumeReader>(root);
}

std::unique_ptr<VolumeReader> openVolumeReader(const QString& drive)
{
    if (const QString mounted = mountPointOf(drive); !mounted.isEmpty()) {
        return openFolderReader(mounted);
    }
    std::unique_ptr<Medium> medium = openMedium(drive);
    if (!medium) {
        return nullptr;
    }
    // A UDF bridge disc is read as UDF, as it is identified.
    if (hasUdfRecognition(*medium) && medium->isPlainImage()) {
        if (auto udf = UdfVolumeReader::open(drive)) {
            return udf;
        }
    }
    return IsoVolumeReader::open(std::move(medium));
}

} // namespace vinora
