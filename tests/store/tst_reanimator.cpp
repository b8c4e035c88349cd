#include "frame/Cp1251.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

using namespace vinora;

namespace {

int count(const QString& path, const QString& table)
{
    return Db(path, Db::Access::ReadOnly).scalar("SELECT count(*) FROM \"" + table + u'"').toInt();
}

} // namespace

class tst_reanimator : public QObject
{
    Q_OBJECT

private slots:
    void newDatabasesHoldTheirRows()
    {
        test::TestApp app;
        QCOMPARE(Reanimator(app.ctx, 0), false);
        QStringList rows;
        for (const char* table : {"Стиль", "Описание", "Жанр", "ФорматЗвука", "Аудио", "Компьютер", "DVD",
                                  "Должники", "ИменаДолжников", "_Информация"}) {
            const QString name = QString::fromUtf8(table);
            rows.append(name + ' ' + QString::number(count(app.ctx.MainDBPath, name)));
        }
        QCOMPARE(rows.join(", "),
                 "Стиль 31, Описание 23, Жанр 10, ФорматЗвука 8, Аудио 0, Компьютер 0, DVD 0, "
                 "Должники 0, ИменаДолжников 0, _Информация 0");
    }

    void initialRowsInOrder()
    {
        test::TestApp app;
        Reanimator(app.ctx, 0);
        Db db(app.ctx.MainDBPath);
        for (const auto& [table, key, field] :
             {std::tuple{"Стиль", "КодСтиля", "Стиль"}, std::tuple{"Описание", "КодОписания", "Описание"},
              std::tuple{"Жанр", "КодЖанр", "Жанр"}}) {
            const QVariant first = db.scalar(
                QStringLiteral("SELECT %1 FROM %2 WHERE %3 = 1")
                    .arg(QString::fromUtf8(field), QString::fromUtf8(table), QString::fromUtf8(key)));
            QVERIFY2(!first.isNull() && first.toString().isEmpty(), table);
        }
        QCOMPARE(db.scalar("SELECT Стиль FROM Стиль WHERE КодСтиля = 31").toString(), "Trance");
        QCOMPARE(db.scalar("SELECT Описание FROM Описание WHERE КодОписания = 23").toString(), "WEB-дизайн");
        QCOMPARE(db.scalar("SELECT ФорматЗвука FROM ФорматЗвука WHERE КодФорматЗвука = 1").toString(),
                 "Dolby Digital 2.0");

        Db files(app.ctx.FilesDBPath);
        QCOMPARE(files.scalar("SELECT group_concat(Файл || ':' || Use, ' ') FROM Фильтр1").toString(),
                 ".txt:-1 .doc:-1 .diz:-1 .nfo:-1 .htm:-1 .inf:-1 .ini:-1 .log:-1");
        QCOMPARE(files.scalar("SELECT group_concat(Файл, ' ') FROM Фильтр2").toString(), ".exe .zip .rar");
    }

    void kindsTouchOnlyTheirFiles()
    {
        test::TestApp app;
        Reanimator(app.ctx, 0);
        {
            Db files(app.ctx.FilesDBPath);
            ContentsLists(files, ContentsKind::Files).create("1A2B");
            files.exec("DELETE FROM Фильтр1");
            Db tracks(app.ctx.TracksDBPath);
            ContentsLists(tracks, ContentsKind::Tracks).create("3C4D");
        }
        const quint64 main = test::inodeOf(app.ctx.MainDBPath);
        const quint64 tracks = test::inodeOf(app.ctx.TracksDBPath);
        QCOMPARE(Reanimator(app.ctx, 1), false);
        QCOMPARE(test::inodeOf(app.ctx.MainDBPath), main);
        QCOMPARE(test::inodeOf(app.ctx.TracksDBPath), tracks);
        QCOMPARE(count(app.ctx.FilesDBPath, "Фильтр1"), 8);
        QCOMPARE(count(app.ctx.FilesDBPath, "Списки"), 0);

        const quint64 files = test::inodeOf(app.ctx.FilesDBPath);
        Reanimator(app.ctx, 2);
        QCOMPARE(test::inodeOf(app.ctx.FilesDBPath), files);
        QCOMPARE(test::inodeOf(app.ctx.MainDBPath), main);
        // Rebuilt inside the same file, which another process may hold open.
        QCOMPARE(test::inodeOf(app.ctx.TracksDBPath), tracks);
        QCOMPARE(count(app.ctx.TracksDBPath, "Списки"), 0);

        // Nothing of the work in progress stays in the folder.
        QCOMPARE(QDir(app.folder.path()).entryList({"*.db"}, QDir::Files | QDir::Hidden).size(), 3);
        QCOMPARE(QDir(app.folder.path()).entryList({"*part*"}, QDir::Files | QDir::Hidden), QStringList());
    }

    void unknownKindBuildsAll()
    {
        test::TestApp app;
        QCOMPARE(Reanimator(app.ctx, 7), false);
        QVERIFY(QFileInfo::exists(app.ctx.MainDBPath));
        QVERIFY(QFileInfo::exists(app.ctx.FilesDBPath));
        QVERIFY(QFileInfo::exists(app.ctx.TracksDBPath));
    }

    void existingMainDatabaseGoesToFaultLog()
    {
        test::TestApp app;
        Reanimator(app.ctx, 0);
        const QByteArray before = test::readFile(app.ctx.MainDBPath);
        QVERIFY_THROWS_EXCEPTION(ProcessEnded, Reanimator(app.ctx, 0));
        QVERIFY(cp1251::decode(test::readFile(app.file("bugreport.log")))
                    .contains("(Код: 3204) vinoraModule, Reanimator()"));
        QCOMPARE(test::readFile(app.ctx.MainDBPath), before);
    }

    void readOnlyFolderIsTold()
    {
        test::TestApp app;
        QTemporaryDir elsewhere;
        app.ctx.setDatabaseFolder(elsewhere.path());
        test::ReadOnlyFolder readOnly(elsewhere.path());
        if (!readOnly.active()) {
            QSKIP("this machine cannot make a folder read-only");
        }
        QCOMPARE(Reanimator(app.ctx, 0), true);
        QCOMPARE(app.prompter.texts(),
                 QStringList{"Папка '" + elsewhere.path() + "' доступна только для чтения!"});
        QCOMPARE(app.prompter.shown[0].style, MessageStyle::Exclamation);
        QVERIFY(QDir(elsewhere.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    }

    void missingFolderOffersTheApplicationFolder_data()
    {
        QTest::addColumn<bool>("yes");
        QTest::newRow("Yes") << true;
        QTest::newRow("No") << false;
    }

    void missingFolderOffersTheApplicationFolder()
    {
        QFETCH(bool, yes);
        test::TestApp app;
        const QString gone = app.file("gone");
        app.ctx.setDatabaseFolder(gone);
        app.prompter.answer(yes ? Answer::Yes : Answer::No);
        if (yes) {
            QCOMPARE(Reanimator(app.ctx, 0), false);
            QCOMPARE(app.ctx.ini().read("Option", "PathLocalDB", 255), app.folder.path());
            QCOMPARE(count(app.file("vinora.db"), "Стиль"), 31);
            QVERIFY(QFileInfo::exists(app.file("vinora_tracks.db")));
        } else {
            QVERIFY_THROWS_EXCEPTION(ProcessEnded, Reanimator(app.ctx, 0));
            QVERIFY(!QFileInfo::exists(app.file("vinora.db")));
        }
        QCOMPARE(
            app.prompter.texts(),
            QStringList{"Папка '" + gone + "' не существует!\n\nВосстановить путь к локальной базе данных?"});
    }

    void stockToolReadsTheFiles()
    {
        test::TestApp app;
        Reanimator(app.ctx, 0);
        QProcess sqlite;
        sqlite.start("sqlite3", {app.ctx.MainDBPath, "SELECT count(*) FROM Стиль WHERE Стиль LIKE 'r%';"});
        QVERIFY(sqlite.waitForFinished(10000));
        QCOMPARE(sqlite.exitCode(), 0);
        QCOMPARE(sqlite.readAllStandardOutput().trimmed(), QByteArray("6"));
    }
};

VINORA_TEST_MAIN(tst_reanimator)
#include "tst_reanimator.moc"
