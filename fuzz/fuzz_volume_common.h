// What the volume fuzz targets share: the input as an image file, and a walk of the volume
// that checks what holds for every listed entry.
#pragma once

#include "recognition/ImageProbe.h"
#include "recognition/VolumeIdentity.h"
#include "recognition/VolumeReader.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

namespace fuzzing {

// A probe that hangs ends well within the fuzzer's time limit for one input.
inline void capProbes()
{
    static const bool capped = [] {
        vinora::capImageProbeTime(std::chrono::seconds(5));
        return true;
    }();
    (void)capped;
}

// A fresh file name for each input, so that no verdict kept for an earlier input is used.
inline QString writeImage(const char* suffix, const uint8_t* data, size_t size)
{
    static QTemporaryDir folder;
    static quint64 count = 0;
    const QString path =
        QDir(folder.path()).filePath(QStringLiteral("input%1.").arg(++count) + QString::fromLatin1(suffix));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        std::abort();
    }
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    return path;
}

// Every folder below the root, as deep as a disc may nest: names are non-empty and hold no
// "/", sizes are not negative, and a listing that is read twice is the same.
inline void checkWalk(vinora::VolumeReader& volume, const QString& folder = {}, int depth = 0)
{
    const auto entries = volume.list(folder);
    if (!entries) {
        return;
    }
    const auto again = volume.list(folder);
    if (!again || again->size() != entries->size()) {
        std::abort();
    }
    for (const vinora::VolumeEntry& entry : *entries) {
        if (entry.name.isEmpty() || entry.name.contains(u'/') || entry.size < 0 ||
            (entry.isFolder && entry.size != 0)) {
            std::abort();
        }
        const QString path = folder.isEmpty() ? entry.name : folder + u'/' + entry.name;
        if (entry.isFolder) {
            if (depth < vinora::kDeepestFolder) {
                checkWalk(volume, path, depth + 1);
            }
        } else if (const auto tail = volume.tail(path, 128); tail && tail->size() > 128) {
            std::abort();
        }
    }
}

// The identity of a volume that is one: a kind the catalogue knows, a label of sane length.
inline void checkIdentity(const vinora::VolumeInfo& info)
{
    if (!info.ok) {
        return;
    }
    const bool known = info.fsName == u"CDFS" || info.fsName == u"UDF";
    if (!known || info.label.size() > 128 ||
        (info.maxComponentLength != 110 && info.maxComponentLength != 221 &&
         info.maxComponentLength != 255)) {
        std::abort();
    }
}

} // namespace fuzzing
