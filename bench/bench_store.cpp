// The storage operations every screen leans on, on a copy of the collection: opening a
// database, ordering and searching a catalogue, reading and dropping the largest list, and
// storing new lists beside the 2,000,000 file rows already there.
#include "BenchSupport.h"
#include "Collection.h"
#include "contents/FileListStore.h"
#include "frame/AppContext.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace vinora;
using namespace vinora::bench;

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    {
        BenchApp empty(false);
        report("create the three databases", medianMs(1, [&] { Reanimator(empty.ctx, 0); }), 500);
    }

    CollectionApp opened(QStringLiteral("store-work"));
    const Collection& collection = opened.collection;
    AppContext& ctx = opened.ctx;
    const int audioRows = collection.size.audioRows;

    report("open and close the main database", medianMs(21, [&] { Db db(ctx.MainDBPath); }), 5);
    report("the audio discs ordered by title (Russian order)",
           medianMs(5,
                    [&] {
                        Db db(ctx.MainDBPath);
                        auto query = db.query(
                            QStringLiteral("SELECT Номер, Название FROM Аудио ORDER BY Название, Номер"));
                        int rows = 0;
                        while (query.next()) {
                            ++rows;
                        }
                        if (rows != audioRows) {
                            std::abort();
                        }
                    }),
           400);
    report("the audio discs searched with LIKE '*рок*' on two fields",
           medianMs(5,
                    [&] {
                        Db db(ctx.MainDBPath);
                        db.scalar(QStringLiteral(
                                      "SELECT count(*) FROM Аудио WHERE Название LIKE ? OR Альбом LIKE ?"),
                                  {QStringLiteral("*рок*"), QStringLiteral("*рок*")});
                    }),
           150);

    int largest = 0;
    report("the largest list read by its disc id",
           medianMs(5,
                    [&] {
                        Db db(ctx.FilesDBPath);
                        auto query =
                            db.query(QStringLiteral("SELECT Имя, Путь, Размер FROM Файлы WHERE ДискID = ?"),
                                     {collection.largestListId});
                        largest = 0;
                        while (query.next()) {
                            ++largest;
                        }
                    }),
           200);
    std::printf("%-62s %d rows\n", "", largest);
    report("drop the largest list (its rows leave the search index one by one)",
           medianMs(1,
                    [&] {
                        Db db(ctx.FilesDBPath);
                        ContentsLists(db, ContentsKind::Files).drop(collection.largestListId);
                    }),
           2000);

    constexpr int kFiles = 100000;
    report("100,000 file rows stored by the list writer beside the others, index included",
           medianMs(1,
                    [&] {
                        Db db(ctx.FilesDBPath);
                        const ContentsLists lists(db, ContentsKind::Files);
                        for (int disc = 0; disc < 10; ++disc) {
                            const QString id = QStringLiteral("BENCH%1").arg(disc);
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
    return finish();
}
