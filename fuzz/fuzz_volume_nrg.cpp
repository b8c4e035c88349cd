// Nero images from outside. Every input goes through our own checks of the format; one in
// sixteen, and every input the checks pass, also through the whole guarded path (the probe
// in a child process, then libcdio, identity and walk), so the fuzzer keeps its pace.
#include "fuzz_volume_common.h"
#include "recognition/ImageChecks.h"
#include "recognition/Medium.h"

using namespace vinora;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzing::capProbes();
    static quint64 inputs = 0;
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const bool sound = nrgLooksSound(bytes.right(4096), qint64(size));
    if (!sound && ++inputs % 16 != 0) {
        return 0;
    }
    const QString path = fuzzing::writeImage("nrg", data, size);
    const VolumeInfo info = readVolumeInfo(path);
    if (!sound && (info.ok || openMedium(path))) {
        std::abort(); // an image the checks refuse is no disc
    }
    fuzzing::checkIdentity(info);
    if (const auto volume = openVolumeReader(path)) {
        fuzzing::checkWalk(*volume);
    }
    QFile::remove(path);
    return 0;
}
