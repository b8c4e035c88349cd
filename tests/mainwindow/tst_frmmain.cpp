#include "../recognition/DiscFixtures.h"
#include "frame/Cp1251.h"
#include "mainwindow/MainCommands.h"
#include "mainwindow/frmMain.h"
#include "store/DatabaseLock.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/CliRun.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QListWidget>
#include <QMenu>
#include <QProcess>
#include <QStatusBar>
#include <QToolBar>

using namespace vinora;

namespace {

struct Window
{
    Window() { Reanimator(app.ctx, 0); }
    test::TestApp app;
    QString ini(const QString& section, const QString& key) const
    {
        return app.ctx.ini().read(section, key, 255);
    }
    void set(const QString& key, const QString& value) { app.ctx.ini().write("Option", key, value); }
    // State, Left, Top, Width and Height of [Window].
    QString place() const
    {
        QStringList values;
        for (const char* key : {"State", "Left", "Top", "Width", "Height"}) {
            values.append(ini("Window", QString::fromLatin1(key)));
        }
        return values.join(' ');
    }
};

// Pages left free in a database by rows written and deleted: what compaction gives back.
void leaveFreePages(const QString& path)
{
    Db db(path);
    db.exec("CREATE TABLE Мусор (Текст TEXT)");
    Transaction transaction(db);
    Statement insert(db, "INSERT INTO Мусор VALUES (?)");
    for (int i = 0; i < 2000; ++i) {
        insert.run({QString(200, u'ж')});
    }
    transaction.commit();
    db.exec("DROP TABLE Мусор");
}

qint64 freePages(const QString& path)
{
    return Db(path).scalar("PRAGMA freelist_count").toLongLong();
}

} // namespace

class tst_frmmain : public QObject
{
    Q_OBJECT

private slots:
    void loadShowsCaptionDateAndPlace()
    {
        Window w;
        w.app.ctx.ini().write("Window", "Left", "1500");
        w.app.ctx.ini().write("Window", "Top", "750abc");
        w.app.ctx.ini().write("Window", "Width", "10500");
        frmMain window(w.app.ctx);
        const QSize designed = window.size();
        window.Form_Load();
        QCOMPARE(window.statusPanelText(4), "22 ноября (воскресенье)");
        QCOMPARE(window.statusPanelText(1), "База данных - локальная");
        QCOMPARE(window.pos(), QPoint(100, 50));
        QCOMPARE(window.width(), 700); // the place and size fit the offscreen screen of 800 x 600
        QCOMPARE(window.height(), designed.height()); // no Height key: as designed
    }

    void storedStateMaximises()
    {
        Window w;
        w.app.ctx.ini().write("Window", "State", "2");
        frmMain window(w.app.ctx);
        window.Form_Load();
        QVERIFY(window.windowState().testFlag(Qt::WindowMaximized));
    }

    void exitAsks_data()
    {
        QTest::addColumn<QString>("confirmExit"); // "-" for no key
        QTest::addColumn<bool>("asked");
        QTest::newRow("missing") << "-" << true;
        QTest::newRow("empty") << "" << true;
        QTest::newRow("1") << "1" << true;
        QTest::newRow(" 1 with blanks") << " 1" << true;
        QTest::newRow("10 starts with 1") << "10" << true;
        QTest::newRow("0") << "0" << false;
        QTest::newRow("garbage") << "yes" << false;
    }

    void exitAsks()
    {
        QFETCH(QString, confirmExit);
        QFETCH(bool, asked);
        Window w;
        if (confirmExit != u"-") {
            w.set("ConfirmExit", confirmExit);
        }
        frmMain window(w.app.ctx);
        window.Form_Load();
        if (asked) {
            w.app.prompter.answer(Answer::Yes);
        }
        QVERIFY(window.Form_Unload());
        QCOMPARE(w.app.prompter.texts(),
                 asked ? QStringList{"Вы действительно хотите выйти из программы?"} : QStringList{});
    }

    void noKeepsTheWindowAndWritesNothing()
    {
        Window w;
        frmMain window(w.app.ctx);
        window.Form_Load();
        w.app.prompter.answer(Answer::No);
        QVERIFY(!window.Form_Unload());
        QVERIFY(!QFileInfo::exists(w.app.ctx.IniFilePath));
        QVERIFY(!QFileInfo::exists(window.toolbarLayoutPath()));
    }

    void exitStoresThePlace()
    {
        Window w;
        w.set("ConfirmExit", "0");
        {
            frmMain window(w.app.ctx);
            window.Form_Load();
            window.move(40, 30);
            window.resize(700, 500);
            QVERIFY(window.Form_Unload());
        }
        QCOMPARE(w.place(), "0 600 450 10500 7500");

        // Closed maximised: only State changes.
        frmMain window(w.app.ctx);
        window.Form_Load();
        window.showMaximized();
        QVERIFY(window.Form_Unload());
        QCOMPARE(w.place(), "2 600 450 10500 7500");
    }

    void toolbarLayoutSurvives()
    {
        Window w;
        w.set("ConfirmExit", "0");
        {
            frmMain window(w.app.ctx);
            window.Form_Load();
            window.show();
            QVERIFY(window.toolbar("tbDue")->isVisible());
            window.action("ID_View_Toolbars_Due")->trigger();
            QVERIFY(!window.toolbar("tbDue")->isVisible());
            QVERIFY(!window.action("ID_View_Toolbars_Due")->isChecked());
            window.runCommand("ID_Panel"); // the vinora panel off
            QVERIFY(window.Form_Unload());
        }
        QVERIFY(QFileInfo::exists(w.app.file("vinora.atb")));
        frmMain window(w.app.ctx);
        window.Form_Load();
        window.show();
        QVERIFY(!window.toolbar("tbDue")->isVisible());
        QVERIFY(window.toolbar("tbCatalog")->isVisible());
        QVERIFY(!window.action("ID_View_Toolbars_Due")->isChecked());
        QVERIFY(!window.action("ID_Panel")->isChecked());
        QVERIFY(!window.findChild<QWidget*>("SSListBar")->isVisible());

        // A layout file that is not ours leaves the designed layout.
        test::writeFile(window.toolbarLayoutPath(), "garbage");
        frmMain fresh(w.app.ctx);
        fresh.Form_Load();
        fresh.show();
        QVERIFY(fresh.toolbar("tbDue")->isVisible());
        QVERIFY(fresh.action("ID_Panel")->isChecked());
    }

    // Every command of the menus, the logos' menus, the tool bars and the vinora panel works
    // in local mode. The only ones off are those waiting for their moment, listed here.
    void everyCommandIsLiveInLocalMode()
    {
        Window w;
        frmMain window(w.app.ctx);
        window.Form_Load();
        const QStringList waiting = {
            "Открыть локальную",   // only with another database on view
            "Изменить", "Удалить", // only on a shortcut under the pointer
        };
        QStringList disabled;
        const auto walk = [&](const QString& where, const QList<QAction*>& actions) {
            for (const QAction* action : actions) {
                if (!action->isSeparator() && !action->isEnabled() && !waiting.contains(action->text())) {
                    disabled.append(where + " / " + action->text());
                }
            }
        };
        for (const QMenu* menu : window.findChildren<QMenu*>()) {
            walk(menu->title(), menu->actions());
        }
        for (const QToolBar* bar : window.findChildren<QToolBar*>()) {
            walk(bar->windowTitle(), bar->actions());
        }
        for (const QListWidget* group : window.findChildren<QListWidget*>()) {
            for (int i = 0; i < group->count(); ++i) {
                if (!(group->item(i)->flags() & Qt::ItemIsEnabled)) {
                    disabled.append(group->objectName() + " / " + group->item(i)->text());
                }
            }
        }
        QCOMPARE(disabled, QStringList());
        QVERIFY(window.findChildren<QMenu*>().size() > 10);
    }

    void compaction_data()
    {
        QTest::addColumn<QString>("setting"); // "-" for no key
        QTest::addColumn<bool>("compacted");
        QTest::newRow("missing") << "-" << false;
        QTest::newRow("0") << "0" << false;
        QTest::newRow("1") << "1" << true;
        QTest::newRow("11 read through a buffer of 2") << "11" << true;
        QTest::newRow("2") << "2" << false;
    }

    void compaction()
    {
        QFETCH(QString, setting);
        QFETCH(bool, compacted);
        Window w;
        w.set("ConfirmExit", "0");
        if (setting != u"-") {
            w.set("AutoCompactDatabase", setting);
        }
        leaveFreePages(w.app.ctx.FilesDBPath);
        const QStringList paths = {w.app.ctx.MainDBPath, w.app.ctx.FilesDBPath, w.app.ctx.TracksDBPath};
        QList<quint64> before;
        for (const QString& path : paths) {
            before.append(test::inodeOf(path));
        }
        frmMain window(w.app.ctx);
        window.Form_Load();
        QVERIFY(window.Form_Unload());
        QCOMPARE(freePages(w.app.ctx.FilesDBPath) == 0, compacted);
        for (int i = 0; i < paths.size(); ++i) {
            QCOMPARE(test::inodeOf(paths[i]), before[i]); // compacted in place, never replaced
        }
        QCOMPARE(QDir(w.app.folder.path()).entryList({"~*", ".*.part"}, QDir::Files | QDir::Hidden),
                 QStringList());
        Db db(w.app.ctx.MainDBPath);
        QCOMPARE(db.scalar("SELECT count(*) FROM Стиль").toInt(), 31);
        QCOMPARE(w.app.prompter.texts(), QStringList());
    }

    void compactionWaitsForAnotherWriter()
    {
        Window w;
        w.set("ConfirmExit", "0");
        w.set("AutoCompactDatabase", "1");
        leaveFreePages(w.app.ctx.FilesDBPath);
        const qint64 pages = freePages(w.app.ctx.FilesDBPath);
        frmMain window(w.app.ctx);
        window.Form_Load();
        {
            // What vinora-cli holds while it writes.
            const DatabaseLock writer =
                DatabaseLock::acquire(w.app.ctx.MainDBPath, DatabaseLock::Mode::Shared, [] {});
            QVERIFY(window.Form_Unload());
        }
        QCOMPARE(freePages(w.app.ctx.FilesDBPath), pages);
        QCOMPARE(w.app.prompter.texts(),
                 QStringList{"Базы данных не сжаты: с ними сейчас работает другая программа (vinora-cli).\n\n"
                             "Сжатие будет выполнено при следующем выходе из программы."});
    }

    // The window exits with compaction while vinora-cli stores a large file list: every row
    // the command line reports is in the database afterwards, and the list is linked.
    void compactionAtExitDuringAScanKeepsEveryRow()
    {
        Window w;
        w.set("ConfirmExit", "0");
        w.set("AutoCompactDatabase", "1");
        Db(w.app.ctx.MainDBPath)
            .exec("INSERT INTO Компьютер (Номер, Название, КодОписания) VALUES (7, 'Большой', 1)");
        QTemporaryDir work;
        const QString tree = QDir(work.path()).filePath("tree");
        for (int folder = 0; folder < 120; ++folder) {
            const QString path = QStringLiteral("%1/d%2").arg(tree).arg(folder);
            QDir().mkpath(path);
            for (int file = 0; file < 100; ++file) {
                test::writeFile(QStringLiteral("%1/f%2.txt").arg(path).arg(file), "x");
            }
        }
        const QString image = QDir(work.path()).filePath("big.iso");
        test::runTool("genisoimage", {"-quiet", "-J", "-R", "-V", "BIG", "-o", image, tree});

        frmMain window(w.app.ctx);
        window.Form_Load();
        QProcess cli;
        test::startCli(cli, w.app.folder.path(), {"scan", image, "--number", "7", "--folders", "--bind"});
        QVERIFY(cli.waitForStarted());
        // Exit once the scan has stored its first rows (or, on a fast machine, has finished).
        const auto storedRows = [&] {
            Db files(w.app.ctx.FilesDBPath, Db::Access::ReadOnly);
            return files.scalar("SELECT count(*) FROM Файлы").toInt();
        };
        QTRY_VERIFY_WITH_TIMEOUT(cli.state() == QProcess::NotRunning || storedRows() > 0, 30000);
        QVERIFY(window.Form_Unload());
        QVERIFY(cli.state() == QProcess::NotRunning || cli.waitForFinished(120000));
        QVERIFY2(cli.exitStatus() == QProcess::NormalExit && cli.exitCode() == 0,
                 cli.readAllStandardError().constData());
        const QString out = QString::fromUtf8(cli.readAllStandardOutput());
        const QString id = out.section(u'\n', 0, 0).section(": ", 1);
        const int reported = out.section(u'\n', 1, 1).section(": ", 1).toInt();
        QVERIFY2(reported >= 12000, qPrintable(out));
        Db files(w.app.ctx.FilesDBPath);
        QCOMPARE(files.scalar("SELECT count(*) FROM Файлы WHERE ДискID = ?", {id}).toInt(), reported);
        Db main(w.app.ctx.MainDBPath);
        QCOMPARE(main.scalar("SELECT ДискID1 FROM Компьютер WHERE Номер = 7").toString(), id);
    }

    void failedCompactionGoesToTheFaultLogAndKeepsTheData()
    {
        Window w;
        w.set("ConfirmExit", "0");
        w.set("AutoCompactDatabase", "1");
        frmMain window(w.app.ctx);
        window.Form_Load();
        // A track database that is no database at all makes it fail after the first two.
        test::writeFile(w.app.ctx.TracksDBPath, QByteArray(4096, 'x'));
        const QByteArray tracks = test::readFile(w.app.ctx.TracksDBPath);
        QVERIFY_THROWS_EXCEPTION(ProcessEnded, window.Form_Unload());
        QVERIFY(
            cp1251::decode(test::readFile(w.app.file("bugreport.log"))).endsWith(" frmMain, CompactDB()\n"));
        QCOMPARE(test::readFile(w.app.ctx.TracksDBPath), tracks);
        Db db(w.app.ctx.MainDBPath);
        QCOMPARE(db.scalar("SELECT count(*) FROM Стиль").toInt(), 31);
    }
};

VINORA_TEST_MAIN(tst_frmmain)
#include "tst_frmmain.moc"
