// Speed of disc access: the volume query that the drive watch makes once a second, and the
// listing of a large data disc, compared with iso-info reading the same image.
#include "BenchSupport.h"
#include "recognition/VolumeIdentity.h"
#include "recognition/VolumeReader.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace vinora;
using namespace vinora::bench;

namespace {

int walk(VolumeReader& reader, const QString& folder)
{
    int count = 0;
    for (const VolumeEntry& entry : reader.list(folder).value_or(QList<VolumeEntry>{})) {
        ++count;
        if (entry.isFolder) {
            count += walk(reader, folder.isEmpty() ? entry.name : folder + u'/' + entry.name);
        }
    }
    return count;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString tree = dir.filePath(QStringLiteral("tree"));
    // 20,000 files in 200 folders of 100.
    for (int folder = 0; folder < 200; ++folder) {
        const QString path = tree + QStringLiteral("/Папка %1").arg(folder, 3, 10, QLatin1Char('0'));
        QDir().mkpath(path);
        for (int file = 0; file < 100; ++file) {
            QFile out(path + QStringLiteral("/файл %1.txt").arg(file, 3, 10, QLatin1Char('0')));
            out.open(QIODevice::WriteOnly);
            out.write(QByteArray(file, 'x'));
        }
    }
    const QString iso = dir.filePath(QStringLiteral("big.iso"));
    if (!run(QStringLiteral("genisoimage"),
             {QStringLiteral("-quiet"), QStringLiteral("-J"), QStringLiteral("-R"),
              QStringLiteral("-input-charset"), QStringLiteral("utf-8"), QStringLiteral("-o"), iso, tree})) {
        std::fprintf(stderr, "genisoimage failed\n");
        return 2;
    }
    // A three-track audio image of silence.
    const QString bin = dir.filePath(QStringLiteral("audio.bin"));
    QFile binFile(bin);
    binFile.open(QIODevice::WriteOnly);
    binFile.resize(45000LL * 2352);
    binFile.close();
    const QString cue = dir.filePath(QStringLiteral("audio.cue"));
    QFile cueFile(cue);
    cueFile.open(QIODevice::WriteOnly);
    cueFile.write("FILE \"audio.bin\" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n"
                  "  TRACK 02 AUDIO\n    INDEX 01 03:20:00\n  TRACK 03 AUDIO\n    INDEX 01 06:40:00\n");
    cueFile.close();

    report("volume query of a 20,000-file ISO image", medianMs(51, [&] { readVolumeInfo(iso); }), 1.0);
    report("volume query of a CUE/BIN audio image", medianMs(51, [&] { readVolumeInfo(cue); }), 1.0);

    int entries = 0;
    const double ours = medianMs(3, [&] {
        const auto reader = openVolumeReader(iso);
        entries = walk(*reader, {});
    });
    const double isoInfo = medianMs(3, [&] {
        run(QStringLiteral("iso-info"), {QStringLiteral("-l"), QStringLiteral("-i"), iso});
    });
    std::printf("iso-info -l on the same image: %.1f ms; entries listed by the reader: %d\n", isoInfo,
                entries);
    report("listing 20,000 files of an ISO image (goal 2x iso-info)", ours, 2 * isoInfo);
    if (entries != 20200) {
        std::fprintf(stderr, "expected 20,200 entries, got %d\n", entries);
        return 1;
    }
    return finish();
}
