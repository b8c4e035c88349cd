// Speed of the storage operations that every screen leans on, on a catalogue of the size
// a long-time collector reaches. Each measurement is the median of several runs and is
// checked against its goal; a missed goal makes the run fail.
#include "BenchSupport.h"
#include "contents/FileListStore.h"
#include "frame/AppContext.h"
#include "store/Compaction.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace vinora;
using namespace vinora::bench;

namespace {

QString title(int i)
{
    static const QStringList words = {QStringLiteral("Ария"),       QStringLiteral("Кино"),
                                      QStringLiteral("the Doors"),  QStringLiteral("Ёлка"),
                                      QStringLiteral("Pink Floyd"), QStringLiteral("Зимовье")};
    return words[i % words.size()] + u' ' + QString::number(i * 7919 % 100000);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    BenchApp bench(false);
    AppContext& ctx = bench.ctx;
    constexpr int kDiscs = 20000;
    constexpr int kFiles = 100000;

    report("create the three databases", medianMs(1, [&] { Reanimator(ctx, 0); }), 500);

    {
        Db db(ctx.MainDBPath);
        Transaction transaction(db);
        Statement insert(
            db, QStringLiteral("INSERT INTO Аудио (Номер, Название, Альбом, КодСтиля) VALUES (?, ?, ?, 1)"));
        for (int i = 0; i < kDiscs; ++i) {
            insert.run({i % 32000, title(i), title(i * 3)});
        }
        transaction.commit();
    }

    report("open and close the main database", medianMs(21, [&] { Db db(ctx.MainDBPath); }), 5);
    report("20,000 audio discs ordered by title (Russian order)",
           medianMs(5,
                    [&] {
                        Db db(ctx.MainDBPath);
                        auto query = db.query(
                            QStringLiteral("SELECT Номер, Название FROM Аудио ORDER BY Название, Номер"));
                        int rows = 0;
                        while (query.next()) {
                            ++rows;
                        }
                        if (rows != kDiscs) {
                            std::abort();
                        }
                    }),
           400);
    report("20,000 audio discs searched with LIKE '*ёлка 1*'",
           medianMs(5,
                    [&] {
                        Db db(ctx.MainDBPath);
                        db.scalar(QStringLiteral(
                                      "SELECT count(*) FROM Аудио WHERE Название LIKE ? OR Альбом LIKE ?"),
                                  {QStringLiteral("*ёлка 1*"), QStringLiteral("*ёлка 1*")});
                    }),
           150);

    report("100,000 file rows stored by the list writer, index included",
           medianMs(1,
                    [&] {
                        Db db(ctx.FilesDBPath);
                        const ContentsLists lists(db, ContentsKind::Files);
                        for (int disc = 0; disc < 10; ++disc) {
                            const QString id = QString::number(0xA000 + disc, 16).toUpper();
                            lists.create(id);
                            FileListWriter writer(db, id);
                            QList<FileRow> rows;
                            for (int i = 0; i < kFiles / 10; ++i) {
                                rows.append({QStringLiteral("file%1.mp3").arg(i),
                                             QStringLiteral("\\MUSIC\\%1\\").arg(i / 100),
                                             QStringLiteral("4 096,0"),
                                             {}});
                            }
                            writer.write(rows);
                            writer.commit();
                        }
                    }),
           1500);
    report("one list of 10,000 files read by its disc id",
           medianMs(5,
                    [&] {
                        Db db(ctx.FilesDBPath);
                        auto query =
                            db.query(QStringLiteral("SELECT Имя, Путь, Размер FROM Файлы WHERE ДискID = ?"),
                                     {QStringLiteral("A005")});
                        while (query.next()) {
                        }
                    }),
           100);
    report("drop a list of 10,000 files",
           medianMs(1,
                    [&] {
                        Db db(ctx.FilesDBPath);
                        ContentsLists(db, ContentsKind::Files).drop(QStringLiteral("A003"));
                    }),
           500);
    report("compact the three databases", medianMs(3, [&] { compactDatabases(ctx); }), 3000);

    return finish();
}
