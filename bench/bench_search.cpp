// Speed of the global search on a collection of 2,000 computer discs with 2,500 rows each
// (5,000,000 rows), against grep counting the same names in a text dump in the same run.
// The collection is made once and kept (VINORA_BENCH_DATA, default bench/data in the build
// folder); delete it to make it again.
#include "BenchSupport.h"
#include "SearchCollection.h"
#include "search/ContentsSearch.h"
#include "store/Db.h"
#include "store/SearchIndex.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace vinora;
using namespace vinora::bench;

namespace {

const QString kStamp = QStringLiteral("complete-1");

struct Case
{
    const char* what;
    SearchRequest request;
    QStringList grepOptions;
    double goalMs; // 0: reported only
};

double grepMs(const QStringList& options, const QString& text, const QString& dump, int& count)
{
    return medianMs(5, [&] {
        QProcess grep;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        grep.setProcessEnvironment(environment);
        grep.start(QStringLiteral("grep"),
                   QStringList{QStringLiteral("-c"), QStringLiteral("-i"), QStringLiteral("-F")}
                       << options << QStringLiteral("--") << text << dump);
        grep.waitForFinished(-1);
        count = grep.readAllStandardOutput().trimmed().toInt();
    });
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const QString folder = qEnvironmentVariable("VINORA_BENCH_DATA", QCoreApplication::applicationDirPath() +
                                                                         QStringLiteral("/data")) +
                           QStringLiteral("/search-5m");
    const QString dump = folder + QStringLiteral("/names.txt");
    UnattendedPrompter prompts;
    SystemClock clock;
    AppContext ctx(folder, prompts, clock);
    if (!QFile::exists(folder + u'/' + kStamp)) {
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        Reanimator(ctx, 0);
        QElapsedTimer timer;
        timer.start();
        generateSearchCollection(ctx, CollectionShape{}, dump);
        std::printf("collection made in %.1f s (rows, catalogue and search index)\n",
                    timer.elapsed() / 1000.0);
        QFile(folder + u'/' + kStamp).open(QIODevice::WriteOnly);
    }
    {
        const Db files(ctx.FilesDBPath, Db::Access::ReadOnly);
        std::printf("files database: %.0f MB", QFileInfo(ctx.FilesDBPath).size() / 1048576.0);
        try {
            const double index =
                files.scalar(QStringLiteral("SELECT sum(pgsize) FROM dbstat WHERE name GLOB 'ФайлыПоиск*'"))
                    .toDouble();
            std::printf(", of which the search index %.0f MB", index / 1048576.0);
        } catch (const AppError&) {
        }
        std::printf("; rows: %d\n", files.scalar(QStringLiteral("SELECT count(*) FROM Файлы")).toInt());
    }

    // The name of a file row in the middle of the collection, for the whole-field search.
    QString wholeName;
    {
        const Db files(ctx.FilesDBPath, Db::Access::ReadOnly);
        wholeName = files
                        .scalar(QStringLiteral(
                            "SELECT Имя FROM Файлы WHERE rowid >= 2500777 AND Имя <> Путь LIMIT 1"))
                        .toString();
    }
    const QList<Case> cases = {
        {"contains, a Latin word", {false, false, false, false, QStringLiteral("thesis")}, {}, 500},
        {"contains, a Cyrillic word", {false, false, false, false, QStringLiteral("РЫБАЛКА")}, {}, 500},
        // A word in one name of nine: the hits' rows are most of the table, read one by one.
        {"contains, the most frequent Cyrillic word",
         {false, false, false, false, QStringLiteral("музыка")},
         {},
         0},
        {"whole field, a file name", {false, false, true, false, wholeName}, {QStringLiteral("-x")}, 100},
        {"contains, two letters (every row read)", {false, false, false, false, QStringLiteral("ок")}, {}, 0},
    };
    for (const Case& test : cases) {
        int hits = 0;
        const double search = medianMs(5, [&] {
            hits =
                searchContents(searchDatabases(ctx, test.request), test.request, [](const QList<SearchHit>&) {
                }).found;
        });
        int grepCount = 0;
        const double grep = grepMs(test.grepOptions, test.request.text, dump, grepCount);
        // Figures without a goal are shown for what they tell; the table marks them "none".
        const QString request = QStringLiteral("\"%1\": %2 hits").arg(test.request.text).arg(hits);
        reportBeside(test.what, search, test.goalMs > 0 ? test.goalMs : kNoGoal,
                     qPrintable(request + QStringLiteral("; grep -c -i")), grep);
        if (hits != grepCount) {
            std::printf("  the search found %d, grep %d\n", hits, grepCount);
            ++g_failures;
        }
    }
    return finish();
}
