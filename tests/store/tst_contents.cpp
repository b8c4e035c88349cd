#include "frame/AppContext.h"
#include "store/Compaction.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestMain.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

using namespace vinora;

class tst_contents : public QObject
{
    Q_OBJECT

    static int errorOf(const std::function<void()>& work)
    {
        try {
            work();
        } catch (const AppError& error) {
            return error.number();
        }
        return 0;
    }

private slots:
    void createClashDropExists_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("files") << int(ContentsKind::Files);
        QTest::newRow("tracks") << int(ContentsKind::Tracks);
    }

    void createClashDropExists()
    {
        QFETCH(int, kind);
        test::TestApp app;
        Reanimator(app.ctx, 0);
        const auto contentsKind = static_cast<ContentsKind>(kind);
        Db db(contentsKind == ContentsKind::Files ? app.ctx.FilesDBPath : app.ctx.TracksDBPath);
        const ContentsLists lists(db, contentsKind);
        const ContentsDescriptor& descriptor = contentsDescriptor(contentsKind);

        QVERIFY(!lists.exists("12345678"));
        lists.create("12345678"); // digits only
        lists.create("A1B2C3");
        QVERIFY(lists.exists("12345678"));
        QVERIFY(lists.exists("a1b2c3"));
        QCOMPARE(errorOf([&] { lists.create("a1b2c3"); }), 3010);

        const QString insert =
            contentsKind == ContentsKind::Files
                ? "INSERT INTO Файлы (ДискID, Имя, Путь, Размер) VALUES (?, ?, '\\', '0')"
                : QStringLiteral("INSERT INTO Треки (ДискID, Номер, Название) VALUES (?, 1, ?)");
        db.exec(insert, {"A1B2C3", "Первый"});
        db.exec(insert, {"A1B2C3", "Второй"});
        db.exec(insert, {"12345678", "Другой"});
        QCOMPARE(errorOf([&] { db.exec(insert, {"FFFF", "без списка"}); }), 3201);
        QCOMPARE(errorOf([&] { db.exec(insert, {"A1B2C3", ""}); }), 3315);
        QCOMPARE(lists.rowCount("A1B2C3"), 2);

        lists.drop("A1B2C3");
        QVERIFY(!lists.exists("A1B2C3"));
        QCOMPARE(lists.rowCount("A1B2C3"), 0);
        QCOMPARE(lists.rowCount("12345678"), 1);
        QCOMPARE(errorOf([&] { lists.drop("A1B2C3"); }), 3265);
        QCOMPARE(lists.ids(), QStringList{"12345678"});
        QCOMPARE(descriptor.fields.size(), contentsKind == ContentsKind::Files ? 4 : 3);
    }

    // A writer of another process that knows nothing of our locks (the stock sqlite3 tool)
    // inserts rows one by one while the databases are compacted again and again: the
    // engine's locks make it wait, and every row it committed is there afterwards.
    void compactionUnderAnotherProcessLosesNoRow()
    {
        test::TestApp app;
        Reanimator(app.ctx, 0);
        {
            Db files(app.ctx.FilesDBPath);
            ContentsLists(files, ContentsKind::Files).create("KEEP");
        }
        constexpr int kRows = 1500;
        QByteArray script = ".timeout 20000\nPRAGMA synchronous = OFF;\n";
        for (int i = 0; i < kRows; ++i) {
            script +=
                QStringLiteral(
                    "INSERT INTO Файлы (ДискID, Имя, Путь, Размер) VALUES ('KEEP', 'f%1', '\\A\\', '1');\n")
                    .arg(i)
                    .toUtf8();
        }
        QProcess writer;
        writer.start("sqlite3", {app.ctx.FilesDBPath});
        QVERIFY(writer.waitForStarted());
        writer.write(script);
        writer.closeWriteChannel();
        int compactions = 0;
        while (writer.state() != QProcess::NotRunning || compactions < 3) {
            QVERIFY(compactDatabases(app.ctx));
            ++compactions;
            writer.waitForFinished(5);
        }
        QCOMPARE(writer.exitCode(), 0);
        QCOMPARE(QString::fromUtf8(writer.readAllStandardError()), QString());
        Db files(app.ctx.FilesDBPath);
        QCOMPARE(ContentsLists(files, ContentsKind::Files).rowCount("KEEP"), kRows);
    }

    void compactionKeepsListsAndLeavesNoTemporary()
    {
        test::TestApp app;
        QTemporaryDir elsewhere;
        app.ctx.setDatabaseFolder(elsewhere.path());
        Reanimator(app.ctx, 0);
        {
            Db files(app.ctx.FilesDBPath);
            const ContentsLists lists(files, ContentsKind::Files);
            lists.create("KEEP");
            lists.create("BIG");
            Transaction transaction(files);
            Statement insert(
                files, QStringLiteral(
                           "INSERT INTO Файлы (ДискID, Имя, Путь, Размер) VALUES (?, ?, '\\A\\', '1,0')"));
            for (int i = 0; i < 3000; ++i) {
                insert.run({i % 100 == 0 ? QStringLiteral("KEEP") : QStringLiteral("BIG"),
                            QStringLiteral("file%1.txt").arg(i)});
            }
            transaction.commit();
            lists.drop("BIG");
        }
        const qint64 before = databasesSize(app.ctx);
        compactDatabases(app.ctx);
        QVERIFY(databasesSize(app.ctx) < before);

        Db files(app.ctx.FilesDBPath);
        QCOMPARE(ContentsLists(files, ContentsKind::Files).rowCount("KEEP"), 30);
        QCOMPARE(files.scalar("SELECT count(*) FROM Фильтр1").toInt(), 8);
        QCOMPARE(QDir(app.folder.path()).entryList({"*~*", ".*part"}, QDir::Files | QDir::Hidden),
                 QStringList());
        QCOMPARE(QDir(elsewhere.path()).entryList({"*.db*"}, QDir::Files | QDir::Hidden).size(), 3);
    }
};

VINORA_TEST_MAIN(tst_contents)
#include "tst_contents.moc"
