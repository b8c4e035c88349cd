// Speed of the file lists: scanning 100,000 files (an image and a folder) into a copy of
// the collection's files database, beside its 2,000,000 rows, against iso-info and find
// listing the same; and building the folder tree of a list of 10,000 folders.
#include "BenchSupport.h"
#include "Collection.h"
#include "contents/FileListScan.h"
#include "contents/FileListStore.h"
#include "contents/FileTree.h"
#include "frame/AppContext.h"
#include "recognition/VolumeReader.h"
#include "store/ContentsLists.h"
#include "store/Db.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

using namespace vinora;
using namespace vinora::bench;

namespace {

int scanInto(AppContext& ctx, VolumeReader& volume, const QString& id)
{
    const Db files(ctx.FilesDBPath);
    const ContentsLists lists(files, ContentsKind::Files);
    if (lists.exists(id)) {
        lists.drop(id);
    }
    lists.create(id);
    FileListWriter writer(files, id);
    FileListScanner scanner(volume, ScanOptions{}, {});
    scanner.onRows = [&writer](const QList<FileRow>& rows) { writer.write(rows); };
    scanner.run();
    writer.commit();
    return writer.rowsWritten();
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    CollectionApp opened(QStringLiteral("contents-work"));
    AppContext& ctx = opened.ctx;
    const QTemporaryDir dir;
    const QString tree = dir.filePath(QStringLiteral("tree"));
    for (int folder = 0; folder < 1000; ++folder) {
        const QString path = tree + QStringLiteral("/d%1/папка").arg(folder / 10);
        QDir().mkpath(path + QString::number(folder % 10));
        for (int file = 0; file < 100; ++file) {
            QFile out(path + QString::number(folder % 10) + QStringLiteral("/f%1.txt").arg(file));
            out.open(QIODevice::WriteOnly);
        }
    }
    const QString iso = dir.filePath(QStringLiteral("big.iso"));
    if (!run(QStringLiteral("genisoimage"),
             {QStringLiteral("-quiet"), QStringLiteral("-J"), QStringLiteral("-joliet-long"),
              QStringLiteral("-input-charset"), QStringLiteral("utf-8"), QStringLiteral("-o"), iso, tree})) {
        return 2;
    }
    const double isoInfo = medianMs(5, [&] {
        run(QStringLiteral("iso-info"), {QStringLiteral("-l"), QStringLiteral("-i"), iso});
    });
    const double find = medianMs(3, [&] { run(QStringLiteral("find"), {tree}); });
    int rows = 0;
    // Each run makes a list of its own, as a new disc does: a list replaced would add the
    // deletion of the old one to the time.
    int imageRun = 0;
    const double image = medianMs(
        5, [&] { rows = scanInto(ctx, *openVolumeReader(iso), QStringLiteral("IMG%1").arg(++imageRun)); });
    std::printf("rows stored by a scan: %d\n", rows);
    // The goal is three times the time of a plain listing of the same image, measured now.
    reportAgainst("scan of a 100,000-file ISO image into the store", image, "iso-info -l", isoInfo, 3);
    const double folder = medianMs(3, [&] { scanInto(ctx, *openFolderReader(tree), QStringLiteral("DIR")); });
    reportBeside("scan of a folder of the same 100,000 files into the store", folder, 3000, "find", find);

    QStringList paths{QStringLiteral("\\")};
    for (int a = 0; a < 100; ++a) {
        paths.append(QStringLiteral("\\A%1\\").arg(a, 3, 10, QLatin1Char('0')));
        for (int b = 0; b < 99; ++b) {
            paths.append(QStringLiteral("\\A%1\\B%2\\")
                             .arg(a, 3, 10, QLatin1Char('0'))
                             .arg(b, 2, 10, QLatin1Char('0')));
        }
    }
    paths.sort();
    report("build the folder tree of 10,000 folders", medianMs(5, [&] { BuildTree(paths); }), 200);
    return finish();
}
