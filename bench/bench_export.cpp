// Speed of the HTML export: the page of a catalogue of 20,000 audio discs with every column,
// also with 2,000 covers copied beside the page, and the page of a file list of 100,000 rows
// with every column, as stored and sorted by name.
#include "BenchSupport.h"
#include "exchange/CatalogueExport.h"
#include "exchange/ListExport.h"
#include "store/Db.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

using namespace vinora;
using namespace vinora::bench;

namespace {

void fillCatalogue(const AppContext& ctx, int discs, int covers)
{
    const Db db(ctx.MainDBPath);
    Transaction transaction(db);
    Statement insert(db, QStringLiteral("INSERT INTO Аудио (Номер, Название, Альбом, Год, Дисков, Записей1, "
                                        "Записей2, Время1, Время2, КодСтиля, ДатаЗаписи, ДатаИзменения) "
                                        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    for (int i = 1; i <= discs; ++i) {
        insert.run({i % 32000 + 1, QStringLiteral("Исполнитель & группа %1").arg(i),
                    QStringLiteral("Альбом <%1>").arg(i), QString::number(1960 + i % 60), 1 + i % 2,
                    10 + i % 9, 12, QStringLiteral("4%1:0%2").arg(i % 10).arg(i % 7), QStringLiteral("39:59"),
                    1 + i % 30, QStringLiteral("2025-01-01"), QStringLiteral("2026-01-01")});
    }
    transaction.commit();
    QDir(ctx.appFolder()).mkpath(QStringLiteral("box"));
    const QByteArray picture(20000, 'x');
    for (int i = 1; i <= covers; ++i) {
        QFile cover(ctx.appFile(QStringLiteral("box/ad_%1.box").arg(i * 10)));
        cover.open(QIODevice::WriteOnly);
        cover.write(picture);
    }
}

void fillFileList(const AppContext& ctx, int rows)
{
    {
        const Db db(ctx.MainDBPath);
        db.exec(QStringLiteral("INSERT INTO Компьютер (Номер, Название, КодОписания, Дисков, ДискID1) "
                               "VALUES (1, 'Архив', 1, 1, 'BIG')"));
    }
    const Db db(ctx.FilesDBPath);
    db.exec(QStringLiteral("INSERT INTO Списки (ДискID) VALUES ('BIG')"));
    Transaction transaction(db);
    Statement insert(db, QStringLiteral("INSERT INTO Файлы (ДискID, Имя, Путь, Размер, Комментарий) "
                                        "VALUES ('BIG', ?, ?, ?, ?)"));
    for (int i = 0; i < rows; ++i) {
        const QString folder = QStringLiteral("\\папка%1\\подпапка%2\\").arg(i / 1000).arg(i / 100 % 10);
        if (i % 100 == 0) {
            insert.run({folder, folder, QStringLiteral("0"), QVariant()});
        } else {
            insert.run({QStringLiteral("файл_%1.mp3").arg((i * 7919) % rows), folder,
                        QStringLiteral("4 096,0"),
                        i % 3 == 0 ? QVariant(QStringLiteral("Исполнитель - Песня")) : QVariant()});
        }
    }
    transaction.commit();
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    BenchApp bench;
    const AppContext& ctx = bench.ctx;
    fillCatalogue(ctx, 20000, 2000);
    fillFileList(ctx, 100000);
    const QString page = bench.dir.filePath(QStringLiteral("page.htm"));

    int discs = 0;
    QList<int> every;
    for (int position = 1; position <= 9; ++position) {
        every.append(position);
    }
    const double catalogue = medianMs(3, [&] {
        discs = ExportCatalog(ctx, {Category::Audio, every.mid(0, 8), false, kAllValues}, page);
    });
    std::printf("catalogue page: %d discs, %lld bytes\n", discs,
                static_cast<long long>(QFileInfo(page).size()));
    report("catalogue page, 20,000 discs, every column but the cover", catalogue, 1000);
    const double byTitle = medianMs(3, [&] {
        ExportCatalog(ctx, {Category::Audio, every.mid(0, 8), true, kAllValues}, page);
    });
    report("the same, sorted by title", byTitle, 1000);

    // With covers the time is the file system's, making and removing a file per cover: it is
    // held against cp -r of the same covers (and the old copies removed first, as the
    // export replaces its folder).
    const QString copies = bench.dir.filePath(QStringLiteral("copies"));
    run(QStringLiteral("cp"), {QStringLiteral("-r"), ctx.appFile(QStringLiteral("box")), copies});
    const double copy = medianMs(3, [&] {
        QDir(copies).removeRecursively();
        run(QStringLiteral("cp"), {QStringLiteral("-r"), ctx.appFile(QStringLiteral("box")), copies});
    });
    const double withCovers = medianMs(3, [&] {
        ExportCatalog(ctx, {Category::Audio, every, false, kAllValues}, page);
    });
    std::printf("catalogue page with 2,000 covers: %.0f ms in all; rm -r and cp -r of the covers: %.0f ms\n",
                withCovers, copy);
    report("catalogue page with 2,000 covers, beyond rm and cp of them", withCovers - copy, 1000);

    int rows = 0;
    const double stored = medianMs(3, [&] { rows = ExportFiles(ctx, {{1}, {1, 2, 3}, false, 0}, page); });
    std::printf("file-list page: %d rows, %lld bytes\n", rows,
                static_cast<long long>(QFileInfo(page).size()));
    report("file-list page, 100,000 rows, every column", stored, 1000);
    const double sorted = medianMs(3, [&] { ExportFiles(ctx, {{1}, {1, 2, 3}, true, 0}, page); });
    report("the same, sorted by name", sorted, 1000);
    return finish();
}
