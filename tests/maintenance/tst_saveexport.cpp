#include "SampleCollection.h"
#include "catalogue/frmCatalogue.h"
#include "exchange/frmImport.h"
#include "mainwindow/frmMain.h"
#include "store/Db.h"
#include "store/InfoStamp.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QProcess>
#include <QPushButton>

using namespace vinora;

namespace {

const QStringList kNames = {"vinora.db", "vinora_files.db", "vinora_tracks.db"};

// Our databases with two audio discs (one lent, both bound to their discs), a computer disc
// and a DVD, and the main window on them.
struct Session
{
    test::TestApp app;
    std::unique_ptr<frmMain> window;
    Session()
    {
        Reanimator(app.ctx, 0);
        test::addDiscs(app.folder.path(), {{Category::Audio, 1, "Кино", "Звезда", "Шансон", {"A1"}},
                                           {Category::Audio, 2, "Aria", "", "Rock", {"A2"}},
                                           {Category::Computer, 1, "Игры", {}, "Квест", {"C1"}},
                                           {Category::Dvd, 1, "Матрица", {}, "Фантастика", {}}});
        Db db(app.ctx.MainDBPath);
        db.exec("UPDATE Аудио SET ДискID1_d = 'AD:1', Должник = -1 WHERE Номер = 1");
        db.exec("INSERT INTO ИменаДолжников (Имя) VALUES ('Петров')");
        db.exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория) VALUES (1, 1, 'AD')");
        StampCatalogueUpdate(db, Category::Audio, QDate(2026, 11, 20));
        StampBackup(db, QDate(2026, 11, 21));
        window = std::make_unique<frmMain>(app.ctx);
        window->Form_Load();
    }
    QString hashes() const
    {
        QString all;
        for (const QString& path : {app.ctx.MainDBPath, app.ctx.FilesDBPath, app.ctx.TracksDBPath}) {
            all += QString::fromLatin1(
                QCryptographicHash::hash(test::readFile(path), QCryptographicHash::Sha1).toHex());
        }
        return all;
    }
};

QString stockTool(const QString& database, const QString& sql)
{
    QProcess sqlite;
    sqlite.start("sqlite3", {database, sql});
    sqlite.waitForFinished(20000);
    return QString::fromUtf8(sqlite.readAllStandardOutput()).trimmed() +
           QString::fromUtf8(sqlite.readAllStandardError());
}

} // namespace

class tst_saveexport : public QObject
{
    Q_OBJECT

private slots:
    void exportHoldsTheCataloguesAlone()
    {
        Session s;
        QTemporaryDir target;
        const QString path = target.filePath("каталог.db");
        s.app.prompter.answerPath(path);
        s.window->runCommand("ID_DB_ExportDB");
        QCOMPARE(s.app.prompter.texts(), (QStringList{"Экспорт базы данных vinora",
                                                      "База данных успешно cохранена в файл:\n" + path}));
        // Exactly these tables and fields, in the order of the main database.
        const QString structure = stockTool(
            path,
            "SELECT m.name || ':' || (SELECT group_concat(name, ',') FROM (SELECT name FROM "
            "pragma_table_info(m.name) ORDER BY cid)) FROM sqlite_master m WHERE m.type = 'table' AND m.name "
            "NOT LIKE 'sqlite%' ORDER BY m.rowid;");
        QCOMPARE(
            structure.split('\n'),
            (QStringList{
                "_Информация:ПослОбновлАудио,ПослОбновлКомпьютер,ПослОбновлDVD",
                "Аудио:КодАудиоДиск,Номер,Название,Альбом,Год,Дисков,Записей1,Записей2,Записей3,Записей4,"
                "Записей5,Записей6,Время1,Время2,Время3,Время4,Время5,Время6,КодСтиля,ДатаЗаписи,"
                "ДатаИзменения",
                "Стиль:КодСтиля,Стиль",
                "Компьютер:КодКомпьютерныйДиск,Номер,Название,КодОписания,РасОписание,Год,Дисков,"
                "ДатаЗаписи,ДатаИзменения",
                "Описание:КодОписания,Описание",
                "DVD:КодDVDДиск,Номер,Название,Описание,Год,Дисков,Время,Зона,КодЖанр,ФорматЗвука,"
                "ДатаЗаписи,ДатаИзменения",
                "Жанр:КодЖанр,Жанр", "ФорматЗвука:КодФорматЗвука,ФорматЗвука"}));
        // The defaults and relations as listed: the DVD's date of change has none here.
        QCOMPARE(
            stockTool(path,
                      "SELECT group_concat(m.name || '.' || p.name, ' ') FROM sqlite_master m, "
                      "pragma_table_info(m.name) p WHERE m.type = 'table' AND p.dflt_value IS NOT NULL;"),
            QString("Аудио.ДатаЗаписи Аудио.ДатаИзменения Компьютер.ДатаЗаписи DVD.ДатаЗаписи"));
        QCOMPARE(stockTool(path,
                           "SELECT group_concat(m.name || '>' || f.\"table\", ' ') FROM sqlite_master m, "
                           "pragma_foreign_key_list(m.name) f WHERE m.type = 'table';"),
                 QString("Аудио>Стиль Компьютер>Описание DVD>Жанр"));
        // Every row with its key; the dates of change, not the date of the backup.
        QCOMPARE(stockTool(path,
                           "SELECT group_concat(КодАудиоДиск || ' ' || Номер || ' ' || Название || ' ' || "
                           "Стиль, ', ') FROM Аудио JOIN Стиль USING (КодСтиля);"),
                 QString("1 1 Кино Шансон, 2 2 Aria Rock"));
        QCOMPARE(stockTool(path,
                           "SELECT count(*) FROM Стиль; SELECT count(*) FROM Компьютер; SELECT Название FROM "
                           "DVD; SELECT * FROM _Информация;"),
                 QString("32\n1\nМатрица\n2026-11-20||"));
        QCOMPARE(stockTool(path, "PRAGMA integrity_check; PRAGMA foreign_key_check;"), QString("ok"));
    }

    void exportOpensAsAnExternalDatabase()
    {
        Session s;
        QTemporaryDir target;
        const QString path = target.filePath("friend.db");
        s.app.prompter.answerPath(path);
        s.window->runCommand("ID_DB_ExportDB");
        s.app.prompter.shown.clear();
        s.app.prompter.answerPath(path);
        s.window->runCommand("ID_DB_Open");
        QCOMPARE(s.window->statusPanelText(1), QString("База данных - внешняя (файл: 'friend.db')"));
        QCOMPARE(s.window->label("lblCDsAudio")->text(), QString("2"));
        QCOMPARE(s.window->label("lblCDsPCUpdate")->text(), QString("-"));
        int rows = -1;
        QString lendButton;
        s.app.prompter.handleModal([&](QDialog& dialog) {
            auto& catalogue = static_cast<frmCatalogue&>(dialog);
            rows = catalogue.rowCount();
            lendButton = catalogue.findChild<QPushButton*>("imgButton4")->text();
            return 0;
        });
        s.window->runCommand("ID_Catalog_AudioCD");
        QCOMPARE(rows, 2);
        QCOMPARE(lendButton, QString("Должник")); // no loans in the file
        QCOMPARE(s.app.prompter.texts(), QStringList{"Открытие базы данных vinora"});
    }

    void exportOverALocalDatabaseRefused_data()
    {
        QTest::addColumn<int>("local");
        for (int i = 0; i < 3; ++i) {
            QTest::newRow(kNames[i].toUtf8().constData()) << i;
        }
    }

    void exportOverALocalDatabaseRefused()
    {
        QFETCH(int, local);
        Session s;
        const QString before = s.hashes();
        s.app.prompter.answerPath(s.app.file(kNames[local]));
        s.window->runCommand("ID_DB_ExportDB");
        QCOMPARE(s.app.prompter.texts().last(),
                 QString("Вы попытались экспортировать базу данных по верх локальной."));
        QCOMPARE(s.app.prompter.shown.last().style, MessageStyle::Exclamation);
        QCOMPARE(s.hashes(), before);
    }

    void exportReplacesAnotherFile()
    {
        Session s;
        QTemporaryDir target;
        const QString path = target.filePath("old.db");
        test::writeFile(path, "an older file");
        s.app.prompter.answerPath(path);
        s.window->runCommand("ID_DB_ExportDB");
        QCOMPARE(test::countOf(path, "SELECT count(*) FROM Аудио"), 2);
        QCOMPARE(QDir(target.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"old.db"});
    }

    void saveAs_data()
    {
        QTest::addColumn<QString>("place"); // what the chosen folder is
        QTest::addColumn<int>("answer");    // to the question of overwriting: 0 none, 1 Yes, 2 No
        QTest::addColumn<QString>("told");
        QTest::addColumn<bool>("saved");
        const QString done =
            "Файлы базы данных (vinora.db, vinora_files.db, vinora_tracks.db) успешно сохранены в "
            "каталоге '%1'.";
        QTest::newRow("a new folder") << "new" << 0 << done << true;
        QTest::newRow("our own folder")
            << "local" << 0 << "Вы попытались сохранить базу данных по верх локальной!" << false;
        QTest::newRow("files there, Yes") << "old" << 1 << done << true;
        QTest::newRow("files there, No")
            << "old" << 2 << "Перезаписать существующие файлы базы данных?" << false;
        QTest::newRow("no such folder") << "missing" << 0 << "Устройство не готово!" << false;
        QTest::newRow("read-only folder") << "read-only" << 0 << "Папка доступна только для чтения!" << false;
        QTest::newRow("a folder in the way") << "blocked" << 1 << "Отказано в доступе!" << false;
    }

    void saveAs()
    {
        QFETCH(QString, place);
        QFETCH(int, answer);
        QFETCH(QString, told);
        QFETCH(bool, saved);
        Session s;
        QTemporaryDir target;
        QString folder = target.path();
        if (place == "local") {
            folder = s.app.folder.path() + "/";
        } else if (place == "missing") {
            folder = target.filePath("gone");
        } else if (place == "old") {
            test::writeFile(target.filePath("vinora_files.db"), "old");
        } else if (place == "blocked") {
            QDir(target.path()).mkpath("vinora_tracks.db/inside");
        }
        std::optional<test::ReadOnlyFolder> readOnly;
        if (place == "read-only") {
            readOnly.emplace(folder);
            if (!readOnly->active()) {
                QSKIP("this machine cannot make a folder read-only");
            }
        }
        const QString before = s.hashes();
        s.app.prompter.answerPath(folder);
        if (answer != 0) {
            s.app.prompter.answer(answer == 1 ? Answer::Yes : Answer::No);
        }
        s.window->runCommand("ID_DB_Save");
        QCOMPARE(s.app.prompter.texts().first(),
                 "Выберите каталог для сохранения файлов базы данных программы vinora (требуется: " +
                     QString::number((QFileInfo(s.app.ctx.MainDBPath).size() +
                                      QFileInfo(s.app.ctx.FilesDBPath).size() +
                                      QFileInfo(s.app.ctx.TracksDBPath).size()) /
                                     1024) +
                     " Kб):");
        QCOMPARE(s.app.prompter.texts().last(), told.contains("%1") ? told.arg(folder) : told);
        QCOMPARE(s.hashes(), before);
        if (saved) {
            QCOMPARE(test::countOf(QDir(folder).filePath("vinora.db"), "SELECT count(*) FROM Должники"), 1);
            QCOMPARE(test::countOf(QDir(folder).filePath("vinora_files.db"), "SELECT count(*) FROM Файлы"),
                     3);
            QCOMPARE(test::countOf(QDir(folder).filePath("vinora_tracks.db"), "SELECT count(*) FROM Треки"),
                     6);
        } else if (place == "old") {
            QCOMPARE(test::readFile(target.filePath("vinora_files.db")), QByteArray("old"));
        }
        if (place != "local") {
            // Nothing half-made is left, and the window goes on as before.
            QCOMPARE(QDir(folder).entryList({".*.part"}, QDir::Files | QDir::Hidden), QStringList());
            QCOMPARE(QFileInfo::exists(QDir(folder).filePath("vinora.db")), saved);
        }
        s.window->LoadData();
        QCOMPARE(s.window->label("lblCDsAudio")->text(), QString("2"));
    }

    void commandsOpenTheirWindows_data()
    {
        QTest::addColumn<QString>("command"); // a tool, or "panel" for the vinora panel's item
        QTest::addColumn<QString>("window");
        QTest::newRow("ID_DB_Wizard") << QString("ID_DB_Wizard") << "frmDBWizard";
        QTest::newRow("Мастер обслуживания") << QString("panel") << "frmDBWizard";
        QTest::newRow("ID_DB_Import") << QString("ID_DB_Import") << "frmImport";
    }

    void commandsOpenTheirWindows()
    {
        QFETCH(QString, command);
        QFETCH(QString, window);
        Session s;
        QString opened;
        s.app.prompter.handleModal([&](QDialog& dialog) {
            opened = dialog.objectName();
            // A disc added meanwhile shows on the dashboard afterwards.
            test::addDiscs(s.app.folder.path(), {{Category::Dvd, 2, "Новый", {}, "Боевик", {}}});
            return 0;
        });
        if (command == "panel") {
            s.window->listBarItemClicked("g3", "Мастер обслуживания");
        } else {
            QVERIFY(s.window->action(command)->isEnabled());
            s.window->action(command)->trigger();
        }
        QCOMPARE(opened, window);
        QCOMPARE(s.window->label("lblCDsDVD")->text(), QString("2"));
    }

    void importFromAFolderWithAnExport()
    {
        Session s;
        QTemporaryDir exported;
        s.app.prompter.answerPath(exported.filePath("мой каталог.db"));
        s.window->runCommand("ID_DB_ExportDB");
        test::TestApp other;
        Reanimator(other.ctx, 0);
        test::addDiscs(other.folder.path(), {{Category::Audio, 10, "Наш", "", "Rock", {}}});
        frmImport window(other.ctx);
        other.prompter.answerPath(exported.path());
        window.Import();
        QCOMPARE(other.prompter.texts().last(),
                 QString("Операция успешно завершена!\n\nИмпортировано:\n\n- Аудио дисков: 2 из 2\n"
                         "- Компьютерных дисков: 1 из 1\n- DVD дисков: 1 из 1\n\n- треков: 0 из 0\n"
                         "- списков файлов: 0 из 0"));
        QCOMPARE(test::catalogueOf(other.ctx.MainDBPath, Category::Audio),
                 QString("10 Наш, 11 Кино, 12 Aria"));
        QCOMPARE(test::valueOf(other.ctx.MainDBPath,
                               "SELECT Стиль FROM Аудио JOIN Стиль USING (КодСтиля) WHERE Номер = 11")
                     .toString(),
                 QString("Шансон"));
    }
};

VINORA_TEST_MAIN(tst_saveexport)
#include "tst_saveexport.moc"
