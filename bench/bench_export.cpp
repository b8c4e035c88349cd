// The HTML export of the collection: the page of the audio catalogue with every column, also
// with its covers copied beside the page (held against rm and cp of the same covers), the page
// of the largest disc's file list with every column, as stored and sorted by name, and the
// page of the whole ledger.
#include "BenchSupport.h"
#include "Collection.h"
#include "exchange/CatalogueExport.h"
#include "exchange/DueExport.h"
#include "exchange/ListExport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

using namespace vinora;
using namespace vinora::bench;

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    CollectionApp opened;
    const Collection& collection = opened.collection;
    const AppContext& ctx = opened.ctx;
    const QTemporaryDir pages;
    const QString page = pages.filePath(QStringLiteral("page.htm"));

    int discs = 0;
    QList<int> every;
    for (int position = 1; position <= 9; ++position) {
        every.append(position);
    }
    const double catalogue = medianMs(3, [&] {
        discs = ExportCatalog(ctx, {Category::Audio, every.mid(0, 8), false, kAllValues}, page);
    });
    std::printf("audio catalogue page: %d discs, %lld bytes\n", discs,
                static_cast<long long>(QFileInfo(page).size()));
    report("audio catalogue page, every column but the cover", catalogue, 1000);
    const double byTitle = medianMs(3, [&] {
        ExportCatalog(ctx, {Category::Audio, every.mid(0, 8), true, kAllValues}, page);
    });
    report("the same, sorted by title", byTitle, 1000);

    // With covers the time is the file system's, making and removing a file per cover: the
    // goal is a second beyond cp of the same covers into a folder made anew, as the export
    // replaces its folder.
    const QString copies = pages.filePath(QStringLiteral("copies"));
    QStringList audioCovers =
        QDir(ctx.appFile(QStringLiteral("box"))).entryList({QStringLiteral("ad_*.box")}, QDir::Files);
    for (QString& cover : audioCovers) {
        cover = ctx.appFile(QStringLiteral("box/") + cover);
    }
    const auto copyCovers = [&] {
        QDir(copies).removeRecursively();
        QDir().mkpath(copies);
        run(QStringLiteral("cp"), audioCovers + QStringList{copies});
    };
    copyCovers();
    const double copy = medianMs(3, copyCovers);
    const double withCovers = medianMs(3, [&] {
        ExportCatalog(ctx, {Category::Audio, every, false, kAllValues}, page);
    });
    std::printf("%-62s %lld covers copied\n", "", static_cast<long long>(audioCovers.size()));
    reportBeside("the same with its covers (goal: 1 s beyond rm and cp of them)", withCovers, 1000 + copy,
                 "rm -r and cp of the covers", copy);

    int rows = 0;
    const double stored = medianMs(3, [&] {
        rows = ExportFiles(ctx, {{collection.largestListNumber}, {1, 2, 3}, false, 0}, page);
    });
    std::printf("file-list page: %d rows, %lld bytes\n", rows,
                static_cast<long long>(QFileInfo(page).size()));
    report("the largest disc's file-list page, every column", stored, 1000);
    const double sorted = medianMs(3, [&] {
        ExportFiles(ctx, {{collection.largestListNumber}, {1, 2, 3}, true, 0}, page);
    });
    report("the same, sorted by name", sorted, 1000);
    int borrowers = 0;
    const double ledger = medianMs(3, [&] { borrowers = ExportDue(ctx, {false, {1, 2, 3, 4, 5, 6}}, page); });
    std::printf("debtor page: %d borrowers, %lld bytes\n", borrowers,
                static_cast<long long>(QFileInfo(page).size()));
    report("debtor page of the whole ledger, every column", ledger, 1000);
    return finish();
}
