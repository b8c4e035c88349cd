// Plain disc images from outside (ISO 9660, Joliet, Rock Ridge, UDF bridge): the volume's
// identity and a whole walk of its folders, by our own ISO reader and, where the image
// carries UDF, through the probed UDF reader.
#include "fuzz_volume_common.h"
#include "recognition/Medium.h"

#include <QtEndian>

using namespace vinora;

namespace {

// The image: the input itself, or, after the line "SECTORS", sectors given by number (a
// 4-byte little-endian number, then 2048 bytes) with zeros between them, so that a UDF
// volume, whose anchor stands at sector 256, fits a small input.
QByteArray imageOf(const uint8_t* data, size_t size)
{
    const QByteArray input = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    if (!input.startsWith("SECTORS\n")) {
        return QByteArray(input.constData(), input.size());
    }
    constexpr qsizetype kRecord = 4 + 2048;
    constexpr quint32 kMostSectors = 4096;
    QByteArray image;
    for (qsizetype at = 8; at + kRecord <= input.size(); at += kRecord) {
        const quint32 sector = qFromLittleEndian<quint32>(input.constData() + at) % kMostSectors;
        const qsizetype end = qsizetype(sector + 1) * 2048;
        if (image.size() < end) {
            image.append(QByteArray(end - image.size(), '\0'));
        }
        image.replace(qsizetype(sector) * 2048, 2048, input.constData() + at + 4, 2048);
    }
    return image;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzing::capProbes();
    const QByteArray image = imageOf(data, size);
    const QString path =
        fuzzing::writeImage("iso", reinterpret_cast<const uint8_t*>(image.constData()), size_t(image.size()));
    fuzzing::checkIdentity(readVolumeInfo(path));
    if (const auto volume = openVolumeReader(path)) {
        fuzzing::checkWalk(*volume);
    }
    QFile::remove(path);
    return 0;
}
