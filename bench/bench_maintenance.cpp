// The maintenance of the collection: backup, compaction, and import of a copy of it into an
// empty catalogue. Each operation works on a fresh copy of the collection's databases and is
// set against `cp` of the same three files in the same run.
#include "BenchSupport.h"
#include "Collection.h"
#include "exchange/Import.h"
#include "store/BackupSet.h"
#include "store/Compaction.h"
#include "store/ContentsLists.h"
#include "store/Db.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace vinora;
using namespace vinora::bench;

namespace {

const QStringList kNames = {QStringLiteral("vinora.db"), QStringLiteral("vinora_files.db"),
                            QStringLiteral("vinora_tracks.db")};

// A fresh copy of the collection's three databases in `target`, made by cp.
double copyWithCp(const QString& collection, const QString& target)
{
    QDir(target).removeRecursively();
    QDir().mkpath(target);
    QStringList arguments;
    for (const QString& name : kNames) {
        arguments.append(QDir(collection).filePath(name));
    }
    arguments.append(target);
    QElapsedTimer timer;
    timer.start();
    if (!run(QStringLiteral("cp"), arguments)) {
        std::printf("cp failed\n");
        ++g_failures;
    }
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

qint64 sizeOf(const QString& folder)
{
    qint64 total = 0;
    for (const QString& name : kNames) {
        total += QFileInfo(QDir(folder).filePath(name)).size();
    }
    return total;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const Collection collection = benchCollection();
    describeCollection(collection);
    std::printf("%.1f MB in the three databases\n", static_cast<double>(sizeOf(collection.folder)) / 1e6);

    const QString work = QDir(benchDataFolder()).filePath(QStringLiteral("maintenance-work"));
    UnattendedPrompter prompts;
    SystemClock clock;
    AppContext ctx(work, prompts, clock);

    // The reference: cp of the three files, three times; the median.
    std::vector<double> copies;
    for (int i = 0; i < 3; ++i) {
        copies.push_back(copyWithCp(collection.folder, work));
    }
    std::sort(copies.begin(), copies.end());
    const double cp = copies[1];
    std::printf("%-58s %10.3f ms\n", "cp of the three databases (reference)", cp);

    // Backup: the online backup of the three databases into the set, beside the databases.
    const double backup = medianMs(3, [&] { createBackupSet(ctx); });
    reportBeside("backup set of the three databases", backup, 2000, "cp", cp);

    // Compaction of a fresh copy, and of a copy with a tenth of its lists deleted.
    copyWithCp(collection.folder, work);
    const double compact = medianMs(1, [&] { compactDatabases(ctx); });
    reportBeside("compaction (VACUUM) of the three databases", compact, 10000, "cp", cp);
    {
        const Db files(ctx.FilesDBPath);
        files.exec(QStringLiteral("DELETE FROM Списки WHERE rowid % 10 = 0"));
    }
    const qint64 before = sizeOf(work);
    const double compactFreed = medianMs(1, [&] { compactDatabases(ctx); });
    reportBeside("compaction after a tenth of the lists were deleted", compactFreed, 10000, "cp", cp);
    std::printf("%-58s %10.1f MB given back\n", "", static_cast<double>(before - sizeOf(work)) / 1e6);

    // Import of the whole collection into an empty catalogue, lists and all; then the same
    // again with the double test, which leaves every disc out.
    QDir(work).removeRecursively();
    QDir().mkpath(work);
    Reanimator(ctx, 0);
    ImportChoice everything;
    everything.audio = everything.computer = everything.dvd = true;
    everything.tracks = everything.files = true;
    const ImportSources sources = importSources(collection.folder, everything);
    ImportCounts counts;
    const double import = medianMs(1, [&] { counts = importCatalogues(ctx, sources, everything, {}); });
    reportBeside("import of the whole collection with its lists, into an empty one", import, 60000, "cp", cp);
    std::printf("%-62s %d + %d + %d discs, %d + %d lists\n", "", counts.imported[0], counts.imported[1],
                counts.imported[2], counts.tracksCopied, counts.filesCopied);
    everything.skipDoubles = true;
    const double doubles = medianMs(1, [&] { counts = importCatalogues(ctx, sources, everything, {}); });
    reportBeside("the same import again, every disc a double", doubles, 2000, "cp", cp);
    std::printf("%-62s %d discs left out\n", "", counts.skipped[0] + counts.skipped[1] + counts.skipped[2]);
    QDir(work).removeRecursively();
    return finish();
}
