#include "app/Startup.h"
#include "frame/Cp1251.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/LocalDatabase.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>

using namespace vinora;

namespace {

QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

struct Start
{
    test::TestApp app;
    QLockFile lock{app.file(QStringLiteral("vinora.lock"))};
    bool splashShown = false;

    bool run()
    {
        return Main(app.ctx, lock, [this] { splashShown = true; });
    }
};

const QStringList kDatabases = {"vinora.db", "vinora_files.db", "vinora_tracks.db"};

} // namespace

class tst_startup : public QObject
{
    Q_OBJECT

private slots:
    void firstStartCreatesTheDatabases()
    {
        Start start;
        QVERIFY(start.run());
        QVERIFY(start.splashShown);
        QCOMPARE(filesIn(start.app.folder.path()),
                 (QStringList{"vinora.db", "vinora.lock", "vinora_files.db", "vinora_tracks.db"}));
        QCOMPARE(start.app.prompter.shown.size(), 0);
        QVERIFY(!QFileInfo::exists(start.app.file(QStringLiteral("vinora.ini"))));
    }

    void secondInstanceIsRefusedAndTouchesNothing()
    {
        Start first;
        QVERIFY(first.run());
        const QStringList before = filesIn(first.app.folder.path());

        test::ScriptedPrompter prompter;
        test::FixedClock clock(first.app.clock.now());
        AppContext second(first.app.folder.path(), prompter, clock);
        QLockFile secondLock(second.appFile(QStringLiteral("vinora.lock")));
        bool splash = false;
        QVERIFY(!Main(second, secondLock, [&] { splash = true; }));
        QVERIFY(!splash);
        QCOMPARE(prompter.texts(), QStringList{"Программа уже запущена!"});
        QCOMPARE(prompter.shown[0].style, MessageStyle::Exclamation);
        QCOMPARE(filesIn(first.app.folder.path()), before);
    }

    void pathLocalDBFolderGetsTheDatabases()
    {
        Start start;
        QTemporaryDir elsewhere;
        start.app.ctx.ini().write(QStringLiteral("Option"), QStringLiteral("PathLocalDB"), elsewhere.path());
        QVERIFY(start.run());
        QCOMPARE(filesIn(elsewhere.path()), kDatabases);
        QCOMPARE(start.app.ctx.MainDBPath, elsewhere.filePath(QStringLiteral("vinora.db")));
        QCOMPARE(filesIn(start.app.folder.path()), (QStringList{".vinora.ini.lock", "vinora.ini", "vinora.lock"}));
    }

    void unreachablePathLocalDB_data()
    {
        QTest::addColumn<bool>("yes");
        QTest::newRow("Yes: the application folder") << true;
        QTest::newRow("No: the program ends") << false;
    }

    void unreachablePathLocalDB()
    {
        QFETCH(bool, yes);
        Start start;
        const QString gone = start.app.file(QStringLiteral("no/such/folder"));
        start.app.ctx.ini().write(QStringLiteral("Option"), QStringLiteral("PathLocalDB"), gone);
        start.app.prompter.answer(yes ? Answer::Yes : Answer::No);
        QCOMPARE(start.run(), yes);
        QCOMPARE(
            start.app.prompter.texts(),
            QStringList{"Папка '" + gone + "' не существует!\n\nВосстановить путь к локальной базе данных?"});
        QCOMPARE(start.app.prompter.shown[0].style, MessageStyle::YesNoExclamation);
        const QString setting =
            start.app.ctx.ini().read(QStringLiteral("Option"), QStringLiteral("PathLocalDB"), 255);
        QCOMPARE(setting, yes ? start.app.folder.path() : gone);
        QCOMPARE(QFileInfo::exists(start.app.file(QStringLiteral("vinora.db"))), yes);
    }

    void onlyTheMissingDatabaseIsMade()
    {
        Start start;
        Reanimator(start.app.ctx, 0);
        QFile::remove(start.app.ctx.TracksDBPath);
        const quint64 main = test::inodeOf(start.app.ctx.MainDBPath);
        const quint64 files = test::inodeOf(start.app.ctx.FilesDBPath);
        QVERIFY(start.run());
        QCOMPARE(test::inodeOf(start.app.ctx.MainDBPath), main);
        QCOMPARE(test::inodeOf(start.app.ctx.FilesDBPath), files);
        QVERIFY(QFileInfo::exists(start.app.ctx.TracksDBPath));
    }

    void lostMainDatabaseDiscardsTheLists()
    {
        Start start;
        Reanimator(start.app.ctx, 0);
        {
            Db files(start.app.ctx.FilesDBPath);
            ContentsLists(files, ContentsKind::Files).create(QStringLiteral("ABCD"));
        }
        QFile::remove(start.app.ctx.MainDBPath);
        QVERIFY(start.run());
        Db files(start.app.ctx.FilesDBPath);
        QVERIFY(!ContentsLists(files, ContentsKind::Files).exists(QStringLiteral("ABCD")));
    }

    void garbageSettingsStillStart()
    {
        Start start;
        QByteArray garbage("[Option]\nPathLocalDB=\n\x01\x02[[[\n=\n");
        garbage.append(QByteArray(3000, '\xFF'));
        test::writeFile(start.app.file(QStringLiteral("vinora.ini")), garbage);
        QVERIFY(start.run());
        QCOMPARE(start.app.ctx.MainDBPath, start.app.file(QStringLiteral("vinora.db")));
        QVERIFY(QFileInfo::exists(start.app.ctx.MainDBPath));
    }

    void readOnlyPathLocalDB_data()
    {
        QTest::addColumn<bool>("yes");
        QTest::newRow("Yes: the application folder") << true;
        QTest::newRow("No: the program ends") << false;
    }

    void readOnlyPathLocalDB()
    {
        QFETCH(bool, yes);
        Start start;
        QTemporaryDir elsewhere;
        start.app.ctx.ini().write(QStringLiteral("Option"), QStringLiteral("PathLocalDB"), elsewhere.path());
        test::ReadOnlyFolder readOnly(elsewhere.path());
        if (!readOnly.active()) {
            QSKIP("this machine cannot make a folder read-only");
        }
        QVERIFY(start.run());
        const QString told = "Папка '" + elsewhere.path() + "' доступна только для чтения!";
        QCOMPARE(start.app.prompter.texts(), (QStringList{told, told, told}));

        // The first opening of the main database asks to go back to the application folder;
        // nothing is created there by that answer.
        start.app.prompter.answer(yes ? Answer::Yes : Answer::No);
        if (yes) {
            QVERIFY_THROWS_EXCEPTION(ProcessEnded, openMainDatabaseForRefresh(start.app.ctx));
            QVERIFY(cp1251::decode(test::readFile(start.app.file(QStringLiteral("bugreport.log"))))
                        .endsWith(" frmMain, LoadData()\n"));
        } else {
            QVERIFY_THROWS_EXCEPTION(ProcessEnded, openMainDatabaseForRefresh(start.app.ctx));
        }
        QCOMPARE(start.app.prompter.texts().value(3),
                 "Папка '" + elsewhere.path() +
                     "' доступна только для чтения! Локальная работа с базой данных не возможна!\n\n"
                     "Восстановить путь к локальной базе данных?");
        QCOMPARE(start.app.ctx.ini().read(QStringLiteral("Option"), QStringLiteral("PathLocalDB"), 255),
                 yes ? start.app.folder.path() : elsewhere.path());
    }

    void readOnlyFolderYesWithDatabasesInTheApplicationFolder()
    {
        Start start;
        Reanimator(start.app.ctx, 0); // the application folder has its databases
        QTemporaryDir elsewhere;
        Start other;
        other.app.ctx.setDatabaseFolder(elsewhere.path());
        Reanimator(other.app.ctx, 0);
        test::ReadOnlyFolder readOnly(elsewhere.path());
        if (!readOnly.active()) {
            QSKIP("this machine cannot make a folder read-only");
        }
        start.app.ctx.ini().write(QStringLiteral("Option"), QStringLiteral("PathLocalDB"), elsewhere.path());
        QVERIFY(start.run());
        start.app.prompter.answer(Answer::Yes);
        const auto db = openMainDatabaseForRefresh(start.app.ctx);
        QCOMPARE(db->path(), start.app.file(QStringLiteral("vinora.db")));
        QCOMPARE(db->scalar(QStringLiteral("SELECT count(*) FROM Стиль")).toInt(), 31);
    }

    void damagedDatabase_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("content"); // empty: a database of another program
        QTest::newRow("notes instead of the main database") << "vinora.db" << QByteArray("my notes, not a database\n");
        QTest::newRow("a foreign database as the main one") << "vinora.db" << QByteArray();
        QTest::newRow("garbage as the file lists") << "vinora_files.db" << QByteArray(8192, '\x5a');
        QTest::newRow("the track lists cut short") << "vinora_tracks.db" << QByteArray("SQLite format 3");
    }

    // A damaged database is named, left as it is, and the way out is the user's: here, leaving.
    void damagedDatabase()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, content);
        Start start;
        Reanimator(start.app.ctx, 0);
        const QString path = start.app.file(file);
        QFile::remove(path);
        if (content.isEmpty()) {
            Db foreign(path, Db::Access::Create);
            foreign.exec(QStringLiteral("CREATE TABLE notes (text TEXT)"));
        } else {
            test::writeFile(path, content);
        }
        const QByteArray before = test::readFile(path);
        start.app.prompter.answerChoice(1); // no backup set: [another folder] [leave]
        QVERIFY(!start.run());
        const test::ShownMessage told = start.app.prompter.shown.value(0);
        QVERIFY2(told.text.startsWith("База данных '" + path + "' повреждена или имеет не верный формат."),
                 qPrintable(told.text));
        QVERIFY(told.text.endsWith("[Выбрать другую папку...] [Выйти]"));
        QCOMPARE(told.style, MessageStyle::Stop);
        QCOMPARE(test::readFile(path), before);
    }

    void damagedDatabaseRestoredFromTheBackupSet()
    {
        Start start;
        Reanimator(start.app.ctx, 0);
        Db(start.app.ctx.MainDBPath).exec("INSERT INTO Стиль (Стиль) VALUES ('из копии')");
        for (const QString& name : kDatabases) {
            QFile::copy(start.app.file(name), start.app.file("backup_of_" + name));
        }
        const QByteArray damaged(4096, '\x11');
        test::writeFile(start.app.ctx.MainDBPath, damaged);
        start.app.prompter.answerChoice(0);
        QVERIFY(start.run());
        QVERIFY(start.app.prompter.texts().value(0).endsWith(
            "[Восстановить из резервной копии] [Выбрать другую папку...] [Выйти]"));
        QCOMPARE(test::readFile(start.app.ctx.MainDBPath + ".damaged"), damaged);
        Db db(start.app.ctx.MainDBPath);
        QCOMPARE(db.scalar("SELECT count(*) FROM Стиль WHERE Стиль = 'из копии'").toInt(), 1);
    }

    void damagedDatabaseLeftForAnotherFolder()
    {
        Start start;
        Reanimator(start.app.ctx, 0);
        test::writeFile(start.app.ctx.FilesDBPath, "damaged");
        QTemporaryDir elsewhere;
        start.app.prompter.answerChoice(0);
        start.app.prompter.answerPath(elsewhere.path());
        QVERIFY(start.run());
        QCOMPARE(filesIn(elsewhere.path()).filter(".db"), kDatabases);
        QCOMPARE(start.app.ctx.ini().read(QStringLiteral("Option"), QStringLiteral("PathLocalDB"), 255),
                 elsewhere.path());
        QCOMPARE(test::readFile(start.app.file("vinora_files.db")), QByteArray("damaged"));
    }

    // A read-only vinora.db in the application folder: told once, by its file, and the
    // program ends; there is no folder to go back to, so no question comes back.
    void readOnlyMainDatabaseFile()
    {
        Start start;
        Reanimator(start.app.ctx, 0);
        test::ReadOnlyFolder readOnly(start.app.ctx.MainDBPath);
        if (!readOnly.active()) {
            QSKIP("this machine cannot make a file read-only");
        }
        QVERIFY(start.run());
        QVERIFY_THROWS_EXCEPTION(ProcessEnded, openMainDatabaseForRefresh(start.app.ctx));
        QCOMPARE(start.app.prompter.texts(),
                 QStringList{"Файл '" + start.app.ctx.MainDBPath +
                             "' доступен только для чтения! Локальная работа с базой данных не возможна!\n\n"
                             "Разрешите запись и запустите программу снова."});
    }

    void readOnlyApplicationFolderIsToldAsSuch()
    {
        Start start;
        test::ReadOnlyFolder readOnly(start.app.folder.path());
        if (!readOnly.active()) {
            QSKIP("this machine cannot make a folder read-only");
        }
        QVERIFY(!start.run());
        QCOMPARE(start.app.prompter.texts(),
                 QStringList{"Папка программы '" + start.app.folder.path() +
                             "' недоступна для записи: программа не может в ней работать.\n\n"
                             "Разрешите запись в эту папку или укажите другую в переменной окружения VINORA_HOME."});
    }
};

VINORA_TEST_MAIN(tst_startup)
#include "tst_startup.moc"
