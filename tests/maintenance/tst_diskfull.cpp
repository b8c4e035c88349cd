// A small file system that fills up under backup, restore, compaction, import, save as and
// export: the live databases stay whole and usable, and the user is told.
#include "SampleCollection.h"
#include "exchange/frmImport.h"
#include "maintenance/frmDBWizard.h"
#include "mainwindow/frmMain.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QProcess>
#include <QRegularExpression>
#include <QStorageInfo>
#include <fcntl.h>
#include <unistd.h>

using namespace vinora;

namespace {

const QString kDiskFull =
    "Недостаточно места на диске!\n\nДействие не выполнено. Данные, сохранённые ранее, не "
    "изменены.";

// A tmpfs of `megabytes` mounted on a folder of its own for the life of the guard.
struct SmallDisk
{
    explicit SmallDisk(int megabytes)
    {
        QProcess mount;
        mount.start("mount",
                    {"-t", "tmpfs", "-o", QString("size=%1m").arg(megabytes), "tmpfs", folder.path()});
        mounted = mount.waitForFinished(20000) && mount.exitStatus() == QProcess::NormalExit &&
                  mount.exitCode() == 0;
    }
    ~SmallDisk()
    {
        if (mounted) {
            QProcess::execute("umount", {"-l", folder.path()});
        }
    }
    QString file(const QString& name) const { return folder.filePath(name); }
    // Takes all the free room but `room` bytes with a file of its own.
    bool fillLeaving(qint64 room) const
    {
        QFile::remove(file("filler"));
        const qint64 take = QStorageInfo(folder.path()).bytesAvailable() - room;
        const int fd =
            ::open(QFile::encodeName(file("filler")).constData(), O_CREAT | O_WRONLY | O_TRUNC, 0644);
        const bool taken = fd >= 0 && take > 0 && ::posix_fallocate(fd, 0, take) == 0;
        ::close(fd);
        return taken;
    }
    QTemporaryDir folder;
    bool mounted = false;
};

// A context whose application folder (and databases) is `folder`, with computer discs of
// 100 files each.
struct App
{
    App(const QString& folder, int discs) : ctx(folder, prompter, clock)
    {
        ctx.setProcessEnder([](int code) { throw ProcessEnded{code}; });
        Reanimator(ctx, 0);
        test::addDiscs(folder, computerDiscs(discs));
    }
    static QList<test::SampleDisc> computerDiscs(int discs)
    {
        QList<test::SampleDisc> list;
        for (int n = 1; n <= discs; ++n) {
            const QString id = QString::number(n);
            list.append({Category::Computer, n, "Диск " + id, {}, "Квест", {"F" + id}, 100});
        }
        return list;
    }
    // What must not change: each database's soundness and rows, and the date of the backup.
    QString state() const
    {
        QStringList state;
        for (const QString& path : {ctx.MainDBPath, ctx.FilesDBPath, ctx.TracksDBPath}) {
            state.append(test::integrityOf(path));
        }
        for (const QString& sql : QStringList{"SELECT count(*) FROM Компьютер", "SELECT count(*) FROM Аудио",
                                              "SELECT ifnull(max(РезервнаяКопия), '-') FROM _Информация"}) {
            state.append(test::valueOf(ctx.MainDBPath, sql).toString());
        }
        return state.join(' ') + ' ' +
               test::valueOf(ctx.FilesDBPath, "SELECT count(*) FROM Файлы").toString();
    }
    // The databases take writes again once there is room.
    void stillUsable(const SmallDisk& disk) const
    {
        QFile::remove(disk.file("filler"));
        Db db(ctx.MainDBPath);
        db.exec("INSERT INTO DVD (Номер, Название, КодЖанр) VALUES (999, 'После', 1)");
        QCOMPARE(db.scalar("SELECT count(*) FROM DVD").toInt(), 1);
    }
    test::ScriptedPrompter prompter;
    test::FixedClock clock{QDateTime(QDate(2026, 11, 22), QTime(14, 5, 9))};
    AppContext ctx;
};

#define SMALL_DISK(name, megabytes)                                                                          \
    SmallDisk name(megabytes);                                                                               \
    if (!name.mounted) {                                                                                     \
        QSKIP("no small file system can be mounted here (mounting tmpfs needs root); a full disk is not "    \
              "tested");                                                                                     \
    }

} // namespace

class tst_diskfull : public QObject
{
    Q_OBJECT

private slots:
    void wizardOnAFullDisk_data()
    {
        QTest::addColumn<QString>("work");
        QTest::newRow("backup over an earlier set") << "backup";
        QTest::newRow("compaction") << "compaction";
    }

    void wizardOnAFullDisk()
    {
        QFETCH(QString, work);
        SMALL_DISK(disk, 24);
        App app(disk.folder.path(), 100);
        frmDBWizard window(app.ctx);
        window.cmdCreate();
        const QByteArray earlierSet = test::readFile(disk.file("backup_of_vinora_files.db"));
        {
            Db files(app.ctx.FilesDBPath);
            files.exec("DELETE FROM Списки WHERE ДискID > 'F5'"); // free pages for the compaction
        }
        const QString before = app.state();
        QVERIFY(disk.fillLeaving(64 * 1024));
        app.prompter.answer(work == "backup" ? Answer::Yes : Answer::Ok);
        work == "backup" ? window.cmdCreate() : window.cmdCompress();
        QCOMPARE(app.prompter.texts().last(), kDiskFull);
        QCOMPARE(app.state(), before);
        QCOMPARE(test::readFile(disk.file("backup_of_vinora_files.db")), earlierSet);
        QCOMPARE(QDir(disk.folder.path()).entryList({".*.part"}, QDir::Files | QDir::Hidden), QStringList());
        QCOMPARE(window.label("lblLastBackup")->text(), QString("от 22 ноября 2026 г."));
        app.stillUsable(disk);
    }

    // The set is bigger than the databases now: the restore runs out of room half-way, and
    // the database restored before that one gets back what it had.
    void restoreOnAFullDisk()
    {
        SMALL_DISK(disk, 32);
        App app(disk.folder.path(), 1000);
        frmDBWizard window(app.ctx);
        window.cmdCreate();
        {
            Db files(app.ctx.FilesDBPath);
            files.exec("DELETE FROM Списки");
            files.exec("VACUUM");
        }
        test::addDiscs(disk.folder.path(), {{Category::Audio, 1, "После копии", "", "Rock", {}}});
        const QString before = app.state();
        qint64 databases = 0;
        for (const QString& path : {app.ctx.MainDBPath, app.ctx.FilesDBPath, app.ctx.TracksDBPath}) {
            databases += QFileInfo(path).size();
        }
        QVERIFY(QFileInfo(disk.file("backup_of_vinora_files.db")).size() > databases + 2 * 1024 * 1024);
        QVERIFY(disk.fillLeaving(databases + 512 * 1024)); // room for the copies aside, not for the set
        app.prompter.answer(Answer::Yes);
        window.cmdRecover();
        QCOMPARE(app.prompter.texts().last(), kDiskFull);
        QCOMPARE(app.state(), before);
        QCOMPARE(
            QDir(disk.folder.path()).entryList({"*.before-restore", "*.damaged"}, QDir::Files | QDir::Hidden),
            QStringList());
        app.stillUsable(disk);
    }

    // Import stops where the room ends: the discs that came in are whole, lists and all, and
    // the message counts exactly them.
    void importOnAFullDisk()
    {
        SMALL_DISK(disk, 24);
        QTemporaryDir other;
        test::makeDatabases(other.path());
        test::addDiscs(other.path(), App::computerDiscs(400));
        App app(disk.folder.path(), 0);
        QVERIFY(disk.fillLeaving(1024 * 1024));
        frmImport window(app.ctx);
        window.findChild<QCheckBox*>("chAD")->setChecked(false);
        window.findChild<QCheckBox*>("chDVD")->setChecked(false);
        app.prompter.answerPath(other.path());
        window.Import();
        const QRegularExpressionMatch told =
            QRegularExpression(
                "^ОШИБКА!\n\nНедостаточно места на диске для базы данных.\n\nИмпортировано до "
                "ошибки:\n\n- Компьютерных дисков: (\\d+) из \\d+\n- списков файлов: (\\d+) из")
                .match(app.prompter.texts().last());
        QVERIFY2(told.hasMatch(), qPrintable(app.prompter.texts().last()));
        const int came = told.captured(1).toInt();
        QVERIFY(came < 400);
        QCOMPARE(told.captured(2).toInt(), came);
        QCOMPARE(test::countOf(app.ctx.MainDBPath, "SELECT count(*) FROM Компьютер"), came);
        QCOMPARE(test::countOf(app.ctx.FilesDBPath, "SELECT count(*) FROM Списки"), came);
        QCOMPARE(test::countOf(app.ctx.FilesDBPath, "SELECT count(*) FROM Файлы"), came * 100);
        QVERIFY(app.state().startsWith("ok ok ok"));
        app.stillUsable(disk);
    }

    void saveAsAndExportToAFullDisk()
    {
        SMALL_DISK(disk, 8);
        test::TestApp app;
        Reanimator(app.ctx, 0);
        test::addDiscs(app.folder.path(), App::computerDiscs(100));
        test::writeFile(disk.file("vinora.db"), "an older copy");
        frmMain window(app.ctx);
        window.Form_Load();
        for (const QString& command : QStringList{"ID_DB_Save", "ID_DB_ExportDB"}) {
            QVERIFY(disk.fillLeaving(16 * 1024));
            app.prompter.answerPath(command == "ID_DB_Save" ? disk.folder.path() : disk.file("export.db"));
            if (command == "ID_DB_Save") {
                app.prompter.answer(Answer::Yes); // to writing over the older copy
            }
            window.runCommand(command);
            QCOMPARE(app.prompter.texts().last(), kDiskFull);
            QCOMPARE(QDir(disk.folder.path()).entryList({"*.db", ".*.part"}, QDir::Files | QDir::Hidden),
                     QStringList{"vinora.db"});
            QCOMPARE(test::readFile(disk.file("vinora.db")), QByteArray("an older copy"));
        }
        QCOMPARE(test::integrityOf(app.ctx.FilesDBPath), QString("ok"));
    }
};

VINORA_TEST_MAIN(tst_diskfull)
#include "tst_diskfull.moc"
