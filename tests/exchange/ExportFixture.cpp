#include "ExportFixture.h"

#include "store/Db.h"
#include "store/Reanimator.h"

#include <QColor>
#include <QDir>
#include <QImage>
#include <QVariant>

namespace vinora::test {
namespace {

QString u8(const char* text)
{
    return QString::fromUtf8(text);
}

QVariant key(const Db& db, const char* table, const char* keyField, const char* name)
{
    return db.scalar("SELECT " + u8(keyField) + " FROM " + u8(table) + " WHERE " + u8(table) + " = ?",
                     {u8(name)});
}

void cover(const QString& appFolder, const char* name, QColor colour)
{
    QDir(appFolder).mkpath("box");
    QImage picture(100, 100, QImage::Format_RGB32);
    picture.fill(colour);
    picture.save(fixtureCover(appFolder, u8(name)), "PNG");
}

} // namespace

QString fixtureCover(const QString& appFolder, const QString& name)
{
    return QDir(appFolder).filePath("box/" + name + ".box");
}

void makeExportFixture(const QString& appFolder)
{
    const QDir folder(appFolder);
    createMainDatabase(folder.filePath("vinora.db"));
    createFilesDatabase(folder.filePath("vinora_files.db"));
    createTracksDatabase(folder.filePath("vinora_tracks.db"));
    {
        const Db db(folder.filePath("vinora.db"));
        const QString audio =
            "INSERT INTO Аудио (Номер, Название, Альбом, Год, Дисков, Записей1, Записей2, Записей3, "
            "Записей4, Время1, Время2, Время3, Время4, КодСтиля, ДатаЗаписи, ДатаИзменения, "
            "ДискID1, ДискID2) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
        const QVariant none;
        db.exec(audio,
                {1, u8("Кино"), u8("Группа крови"), "1988", 1, 11, none, none, none, "45:30", none, none,
                 none, key(db, "Стиль", "КодСтиля", "Rock"), "2026-01-10", "2026-02-01", "A1B2", none});
        db.exec(audio,
                {2, u8("<script>alert(1)</script>"), "", "2001", 2, 10, 12, none, none, "40:00", "41:15",
                 none, none, key(db, "Стиль", "КодСтиля", "Pop"), "2026-03-05", "2026-03-06", "C3", "C4"});
        db.exec(audio,
                {3, u8("Аквариум & Co ♫"), u8("Радио \"Африка\""), "1983", 3, 9, 8, 7, none, "33:00", "34:00",
                 "35:00", none, key(db, "Стиль", "КодСтиля", ""), "2026-04-01", "2026-04-02", none, none});
        db.exec(audio, {4, u8("ДДТ"), none, "1991", 5, 12, 13, 14, 15, "50:01", "50:02", "50:03", "50:04",
                        key(db, "Стиль", "КодСтиля", "Rock"), "2026-05-01", "2026-05-02", none, none});

        const QString computer =
            "INSERT INTO Компьютер (Номер, Название, КодОписания, РасОписание, Год, Дисков, "
            "ДатаЗаписи, ДатаИзменения, ДискID1, ДискID2) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
        db.exec(computer, {1, "Windows 98", key(db, "Описание", "КодОписания", "Сборник программ"),
                           u8("Дистрибутив <SE>"), "1998", 2, "2026-06-01", none, "F1", "F2"});
        db.exec(computer, {5, u8("Игры"), key(db, "Описание", "КодОписания", "Квест"), "", "2003", 1,
                           "2026-06-02", "2026-06-03", none, none});

        const QString dvd =
            "INSERT INTO DVD (Номер, Название, Описание, Год, Дисков, Время, Зона, КодЖанр, "
            "ФорматЗвука, ДатаЗаписи, ДатаИзменения) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
        db.exec(dvd, {1, u8("Матрица"), u8("Нео <и> Морфеус"), "1999", 1, 136, 5,
                      key(db, "Жанр", "КодЖанр", "Фантастика"), "2,5,", "2026-07-01", "2026-07-02"});
        db.exec(dvd, {2, u8("Шрек"), "", "2001", 1, none, 2, key(db, "Жанр", "КодЖанр", "Мультфильм"), "",
                      "2026-07-03", "2026-07-04"});

        const QString borrower = "INSERT INTO ИменаДолжников (Имя, Телефон) VALUES (?, ?)";
        db.exec(borrower, {u8("Иванов"), "123-45-67"});
        db.exec(borrower, {u8("O'Brien"), u8("нет")});
        db.exec(borrower, {u8("Петров <b>"), "555"});
        const auto person = [&](const char* name) {
            return db.scalar("SELECT КодИмени FROM ИменаДолжников WHERE Имя = ?", {u8(name)});
        };
        const auto discKey = [&](const char* table, const char* keyField, int number) {
            return db.scalar("SELECT " + u8(keyField) + " FROM " + u8(table) + " WHERE Номер = ?", {number});
        };
        const QString loan =
            "INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВыдачи, ДатаВозврата, "
            "ДатаВозвратаРеальная, Долг) VALUES (?, ?, ?, ?, ?, ?, ?)";
        // Out and a week late.
        db.exec(loan, {person("Иванов"), discKey("Аудио", "КодАудиоДиск", 1), "AD", "2026-11-01",
                       "2026-11-15", none, -1});
        // Back before its day.
        db.exec(loan, {person("Иванов"), discKey("Компьютер", "КодКомпьютерныйДиск", 1), "PC", "2026-10-01",
                       "2026-10-10", "2026-10-05", 0});
        // Out without term.
        db.exec(loan,
                {person("O'Brien"), discKey("DVD", "КодDVDДиск", 1), "DVD", "2026-11-20", none, none, -1});
        // A disc deleted since it came back five days late.
        db.exec(loan, {person("O'Brien"), 999, "AD", "2026-09-01", "2026-09-10", "2026-09-15", 0});
        // Back a day early; nothing out.
        db.exec(loan, {person("Петров <b>"), discKey("Аудио", "КодАудиоДиск", 2), "AD", "2026-08-01",
                       "2026-08-10", "2026-08-09", 0});
    }
    {
        const Db db(folder.filePath("vinora_files.db"));
        const QString row =
            "INSERT INTO Файлы (ДискID, Имя, Путь, Размер, Комментарий) VALUES (?, ?, ?, ?, ?)";
        for (const char* id : {"F1", "F2"}) {
            db.exec("INSERT INTO Списки (ДискID) VALUES (?)", {u8(id)});
        }
        // As a scan stores them: a folder's subfolders before its own rows.
        db.exec(row, {"F1", "\\DOCS\\", "\\DOCS\\", "0", QVariant()});
        db.exec(row, {"F1", "readme & notes.txt", "\\DOCS\\", "1,2", u8("Прочти <меня>")});
        db.exec(row, {"F1", "\\", "\\", "0", u8("Корень диска")});
        db.exec(row, {"F1", "setup.exe", "\\", "350,0", QVariant()});
        db.exec(row, {"F1", "autorun.inf", "\\", "0,1", QVariant()});
        db.exec(row, {"F2", "\\", "\\", "0", QVariant()});
        db.exec(row, {"F2", "data.cab", "\\", "650 000,0", u8("Архив")});
    }
    {
        const Db db(folder.filePath("vinora_tracks.db"));
        const QString row = "INSERT INTO Треки (ДискID, Номер, Название, Комментарий) VALUES (?, ?, ?, ?)";
        for (const char* id : {"A1B2", "C3", "C4"}) {
            db.exec("INSERT INTO Списки (ДискID) VALUES (?)", {u8(id)});
        }
        db.exec(row, {"A1B2", 1, u8("Группа крови"), QVariant()});
        db.exec(row, {"A1B2", 2, u8("Закрой за мной дверь"), u8("Хит")});
        db.exec(row, {"A1B2", 3, u8("Война"), QVariant()});
        db.exec(row, {"C3", 1, "Intro", QVariant()});
        db.exec(row, {"C4", 1, u8("Outro ♫"), u8("Бонус")});
        db.exec(row, {"C4", 2, QVariant(), u8("без названия")});
    }
    cover(appFolder, "ad_1", QColor(200, 40, 40));
    cover(appFolder, "pc_1", QColor(40, 160, 40));
    cover(appFolder, "dvd_1", QColor(40, 40, 200));
}

} // namespace vinora::test
