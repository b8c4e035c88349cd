// Speed of the maintenance on a collection of 20,000 discs: 10,000 computer discs with
// 2,000,000 file rows and 10,000 audio discs with 120,000 tracks. Each operation works on a
// fresh copy of the collection and is set against `cp` of the same three files in the same run.
// The collection is made once and kept (VINORA_BENCH_DATA, default bench/data in the build
// folder); delete it to make it again.
#include "BenchSupport.h"
#include "SearchCollection.h"
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

const QString kStamp = QStringLiteral("complete-1");
const QStringList kNames = {QStringLiteral("vinora.db"), QStringLiteral("vinora_files.db"),
                            QStringLiteral("vinora_tracks.db")};
constexpr int kComputerDiscs = 10000;
constexpr int kRowsPerDisc = 200;
constexpr int kAudioDiscs = 10000;
constexpr int kTracksPerDisc = 12;

void addAudioDiscs(const AppContext& ctx)
{
    const Db main(ctx.MainDBPath);
    const Db tracks(ctx.TracksDBPath);
    Transaction mainWrites(main);
    Transaction trackWrites(tracks);
    Statement disc(main, QStringLiteral("INSERT INTO Аудио (Номер, Название, Альбом, Год, Дисков, Записей1, "
                                        "КодСтиля, ДискID1) VALUES (?, ?, ?, '1999', 1, ?, ?, ?)"));
    const ContentsLists lists(tracks, ContentsKind::Tracks);
    for (int n = 1; n <= kAudioDiscs; ++n) {
        const QString id = QStringLiteral("%1").arg(0xA0000000u + static_cast<unsigned>(n), 8, 16).toUpper();
        disc.run({n, QStringLiteral("Исполнитель %1").arg(n % 997), QStringLiteral("Альбом %1").arg(n),
                  kTracksPerDisc, 1 + n % 31, id});
        lists.create(id);
        // One statement per list, as the program writes its lists.
        tracks.exec(
            QStringLiteral("WITH RECURSIVE k(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM k WHERE i < ?) "
                           "INSERT INTO Треки (ДискID, Номер, Название) SELECT ?, i, 'Песня номер ' || i || "
                           "' диска ' || ? FROM k"),
            {kTracksPerDisc, id, n});
    }
    trackWrites.commit();
    mainWrites.commit();
}

void makeCollection(const QString& folder)
{
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    UnattendedPrompter prompts;
    SystemClock clock;
    AppContext ctx(folder, prompts, clock);
    Reanimator(ctx, 0);
    std::printf("making the collection in %s (a few minutes, once)...\n", qPrintable(folder));
    generateSearchCollection(ctx, {kComputerDiscs, kRowsPerDisc},
                             QDir(folder).filePath(QStringLiteral("names.txt")));
    QFile::remove(QDir(folder).filePath(QStringLiteral("names.txt")));
    addAudioDiscs(ctx);
    QFile stamp(QDir(folder).filePath(kStamp));
    stamp.open(QIODevice::WriteOnly);
}

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
    const QString data = qEnvironmentVariable("VINORA_BENCH_DATA", QCoreApplication::applicationDirPath() +
                                                                       QStringLiteral("/data"));
    const QString collection = data + QStringLiteral("/maintenance-20k");
    if (!QFile::exists(QDir(collection).filePath(kStamp))) {
        makeCollection(collection);
    }
    std::printf("collection: %d discs, %d file rows, %d tracks, %.1f MB in three databases\n",
                kComputerDiscs + kAudioDiscs, kComputerDiscs * kRowsPerDisc, kAudioDiscs * kTracksPerDisc,
                static_cast<double>(sizeOf(collection)) / 1e6);

    const QString work = data + QStringLiteral("/maintenance-work");
    UnattendedPrompter prompts;
    SystemClock clock;
    AppContext ctx(work, prompts, clock);

    // The reference: cp of the three files, three times; the median.
    std::vector<double> copies;
    for (int i = 0; i < 3; ++i) {
        copies.push_back(copyWithCp(collection, work));
    }
    std::sort(copies.begin(), copies.end());
    const double cp = copies[1];
    std::printf("%-58s %10.3f ms\n", "cp of the three databases (reference)", cp);

    // Backup: the online backup of the three databases into the set, beside the databases.
    const double backup = medianMs(3, [&] { createBackupSet(ctx); });
    report("backup set of the three databases", backup, 2000);
    std::printf("%-58s %10.2f x cp\n", "", backup / cp);

    // Compaction of a fresh copy, and of a copy with a tenth of its lists deleted.
    copyWithCp(collection, work);
    const double compact = medianMs(1, [&] { compactDatabases(ctx); });
    report("compaction (VACUUM) of the three databases", compact, 10000);
    std::printf("%-58s %10.2f x cp\n", "", compact / cp);
    {
        const Db files(ctx.FilesDBPath);
        files.exec(QStringLiteral("DELETE FROM Списки WHERE rowid % 10 = 0"));
    }
    const qint64 before = sizeOf(work);
    const double compactFreed = medianMs(1, [&] { compactDatabases(ctx); });
    report("compaction after a tenth of the lists were deleted", compactFreed, 10000);
    std::printf("%-58s %10.1f MB given back\n", "", static_cast<double>(before - sizeOf(work)) / 1e6);

    // Import of the whole collection into an empty catalogue, lists and all; then the same
    // again with the double test, which leaves every disc out.
    QDir(work).removeRecursively();
    QDir().mkpath(work);
    Reanimator(ctx, 0);
    ImportChoice everything;
    everything.audio = everything.computer = everything.dvd = true;
    everything.tracks = everything.files = true;
    const ImportSources sources = importSources(collection, everything);
    ImportCounts counts;
    const double import = medianMs(1, [&] { counts = importCatalogues(ctx, sources, everything, {}); });
    report("import of 20,000 discs with their lists, into an empty one", import, 60000);
    std::printf("%-58s %10.2f x cp (%d + %d discs, %d + %d lists)\n", "", import / cp, counts.imported[0],
                counts.imported[1], counts.tracksCopied, counts.filesCopied);
    everything.skipDoubles = true;
    const double doubles = medianMs(1, [&] { counts = importCatalogues(ctx, sources, everything, {}); });
    report("the same import again, every disc a double", doubles, 2000);
    std::printf("%-58s %10d discs left out\n", "", counts.skipped[0] + counts.skipped[1]);
    QDir(work).removeRecursively();
    return finish();
}
