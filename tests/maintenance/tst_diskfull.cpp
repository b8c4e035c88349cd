// A small file system that fills up under backup, restore, compaction, import and save as:
// the live databases stay whole and usable, and the user is told.
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
#include <QCryptographicHash>
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
class SmallDisk
{
public:
    explicit SmallDisk(int megabytes)
    {
        QProcess mount;
        mount.start("mount",
                    {"-t", "tmpfs", "-o", QString("size=%1m").arg(megabytes), "tmpfs", m_folder.path()});
        m_mounted = mount.waitForFinished(20000) && mount.exitStatus() == QProcess::NormalExit &&
                    mount.exitCode() == 0;
        m_why = QString::fromLocal8Bit(mount.readAllStandardError()).trimmed();
    }
    ~SmallDisk()
    {
        if (m_mounted) {
            QProcess::execute("umount", {"-l", m_folder.path()});
        }
    }
    bool mounted() const { return m_mounted; }
    QString why() const { return m_why; }
    QString path() const { return m_folder.path(); }
    QString file(const QString& name) const { return m_folder.filePath(name); }

    // Takes all the free room but `room` bytes with a file of its own; false when it could not.
    bool fillLeaving(qint64 room) const
    {
        QStorageInfo disk(path());
        disk.refresh();
        const qint64 take = disk.bytesAvailable() - room;
        const QString filler = file("filler-" + QString::number(++m_fillers));
        const int fd = ::open(QFile::encodeName(filler).constData(), O_CREAT | O_WRONLY, 0644);
        const bool taken = fd >= 0 && take > 0 && ::posix_fallocate(fd, 0, take) == 0;
        if (fd >= 0) {
            ::close(fd);
        }
        return taken;
    }
    void empty() const
    {
        for (int i = 1; i <= m_fillers; ++i) {
            QFile::remove(file("filler-" + QString::number(i)));
        }
    }

private:
    QTemporaryDir m_folder;
    bool m_mounted = false;
    QString m_why;
    mutable int m_fillers = 0;
};

#define SMALL_DISK(name, megabytes)                                                                          \
    SmallDisk name(megabytes);                                                                               \
    if (!name.mounted()) {                                                                                   \
        QSKIP(qPrintable("no small file system can be mounted here (" + name.why() +                         \
                         "); run as root to test a "                                                         \
                         "full disk"));                                                                      \
    }

// A context whose application folder (and databases) is `folder`.
struct App
{
    explicit App(const QString& folder) : ctx(folder, prompter, clock)
    {
        ctx.setProcessEnder([](int code) { throw ProcessEnded{code}; });
    }
    test::ScriptedPrompter prompter;
    test::FixedClock clock{QDateTime(QDate(2026, 11, 22), QTime(14, 5, 9))};
    AppContext ctx;
};

// Computer discs 1..`discs` with lists of `rows` files each.
QList<test::SampleDisc> computerDiscs(int discs, int rows, int from = 1)
{
    QList<test::SampleDisc> list;
    for (int n = from; n < from + discs; ++n) {
        list.append(
            {Category::Computer, n, QString("Диск %1").arg(n), {}, "Квест", {QString("F%1").arg(n)}, rows});
    }
    return list;
}

// What must not change: each database's rows and soundness.
QString stateOf(const AppContext& ctx)
{
    QStringList state;
    for (const QString& path : {ctx.MainDBPath, ctx.FilesDBPath, ctx.TracksDBPath}) {
        state.append(test::integrityOf(path));
    }
    state.append(QString::number(test::countOf(ctx.MainDBPath, "SELECT count(*) FROM Компьютер")));
    state.append(QString::number(test::countOf(ctx.MainDBPath, "SELECT count(*) FROM Аудио")));
    state.append(QString::number(test::countOf(ctx.FilesDBPath, "SELECT count(*) FROM Файлы")));
    state.append(
        test::valueOf(ctx.MainDBPath, "SELECT ifnull(max(РезервнаяКопия), '-') FROM _Информация").toString());
    return state.join(' ');
}

// The databases take writes again once there is room.
void stillUsable(const AppContext& ctx, const SmallDisk& disk)
{
    disk.empty();
    Db db(ctx.MainDBPath);
    db.exec("INSERT INTO DVD (Номер, Название, КодЖанр) VALUES (999, 'После', 1)");
    QCOMPARE(db.scalar("SELECT count(*) FROM DVD WHERE Номер = 999").toInt(), 1);
}

QString hashOf(const QString& path)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(test::readFile(path), QCryptographicHash::Sha1).toHex());
}

} // namespace

class tst_diskfull : public QObject
{
    Q_OBJECT

private slots:
    void backupOnAFullDisk()
    {
        SMALL_DISK(disk, 24);
        App app(disk.path());
        Reanimator(app.ctx, 0);
        test::addDiscs(disk.path(), computerDiscs(100, 100));
        frmDBWizard window(app.ctx);
        window.cmdCreate(); // the earlier set
        const QString earlierSet = hashOf(disk.file("backup_of_vinora_files.db"));
        test::addDiscs(disk.path(), computerDiscs(10, 10, 200));
        const QString before = stateOf(app.ctx);
        QVERIFY(disk.fillLeaving(64 * 1024));
        app.prompter.answer(Answer::Yes);
        window.cmdCreate();
        QCOMPARE(app.prompter.texts().last(), kDiskFull);
        QCOMPARE(stateOf(app.ctx), before);
        QCOMPARE(hashOf(disk.file("backup_of_vinora_files.db")), earlierSet);
        QCOMPARE(QDir(disk.path()).entryList({".*.part"}, QDir::Files | QDir::Hidden), QStringList());
        QCOMPARE(window.label("lblLastBackup")->text(), QString("от 22 ноября 2026 г."));
        stillUsable(app.ctx, disk);
    }

    // The set is bigger than the databases now: the restore runs out of room half-way, and
    // the database restored before that one gets back what it had.
    void restoreOnAFullDisk()
    {
        SMALL_DISK(disk, 32);
        App app(disk.path());
        Reanimator(app.ctx, 0);
        test::addDiscs(disk.path(), computerDiscs(1000, 100));
        frmDBWizard window(app.ctx);
        window.cmdCreate();
        {
            Db files(app.ctx.FilesDBPath);
            files.exec("DELETE FROM Списки");
            files.exec("VACUUM");
        }
        test::addDiscs(disk.path(), {{Category::Audio, 1, "После копии", "", "Rock", {}}});
        const QString before = stateOf(app.ctx);
        qint64 databases = 0;
        for (const QString& path : {app.ctx.MainDBPath, app.ctx.FilesDBPath, app.ctx.TracksDBPath}) {
            databases += QFileInfo(path).size();
        }
        const qint64 setSize = QFileInfo(disk.file("backup_of_vinora_files.db")).size();
        QVERIFY2(setSize > databases + 2 * 1024 * 1024,
                 qPrintable(QString("%1 %2").arg(setSize).arg(databases)));
        QVERIFY(disk.fillLeaving(databases + 512 * 1024));
        app.prompter.answer(Answer::Yes);
        window.cmdRecover();
        QCOMPARE(app.prompter.texts().last(), kDiskFull);
        QCOMPARE(stateOf(app.ctx), before);
        QCOMPARE(QDir(disk.path()).entryList({"*.before-restore", "*.damaged"}, QDir::Files | QDir::Hidden),
                 QStringList());
        stillUsable(app.ctx, disk);
    }

    void compactionOnAFullDisk()
    {
        SMALL_DISK(disk, 24);
        App app(disk.path());
        Reanimator(app.ctx, 0);
        test::addDiscs(disk.path(), computerDiscs(100, 100));
        {
            Db files(app.ctx.FilesDBPath);
            files.exec("DELETE FROM Списки WHERE ДискID > 'F5'");
        }
        const QString before = stateOf(app.ctx);
        const qint64 size = QFileInfo(app.ctx.FilesDBPath).size();
        QVERIFY(disk.fillLeaving(64 * 1024));
        frmDBWizard window(app.ctx);
        app.prompter.answer(Answer::Ok);
        window.cmdCompress();
        QCOMPARE(app.prompter.texts().last(), kDiskFull);
        QCOMPARE(stateOf(app.ctx), before);
        QCOMPARE(QFileInfo(app.ctx.FilesDBPath).size(), size);
        stillUsable(app.ctx, disk);
    }

    // Import stops where the room ends: the discs that came in are whole, lists and all, and
    // the message counts exactly them.
    void importOnAFullDisk()
    {
        SMALL_DISK(disk, 24);
        QTemporaryDir other;
        test::makeDatabases(other.path());
        test::addDiscs(other.path(), computerDiscs(400, 100));
        App app(disk.path());
        Reanimator(app.ctx, 0);
        const QString before = stateOf(app.ctx);
        QVERIFY(disk.fillLeaving(1024 * 1024));
        frmImport window(app.ctx);
        window.findChild<QCheckBox*>("chAD")->setChecked(false);
        window.findChild<QCheckBox*>("chDVD")->setChecked(false);
        app.prompter.answerPath(other.path());
        window.Import();
        const QString told = app.prompter.texts().last();
        QVERIFY2(
            told.startsWith("ОШИБКА!\n\nНедостаточно места на диске для базы данных.\n\nИмпортировано до "
                            "ошибки:\n\n- Компьютерных дисков: "),
            qPrintable(told));
        const QRegularExpressionMatch counts =
            QRegularExpression("Компьютерных дисков: (\\d+) из (\\d+)\n- списков файлов: (\\d+) из")
                .match(told);
        QVERIFY(counts.hasMatch());
        const int came = counts.captured(1).toInt();
        QVERIFY2(came < 400, qPrintable(told));
        QCOMPARE(counts.captured(3).toInt(), came);
        QCOMPARE(test::countOf(app.ctx.MainDBPath, "SELECT count(*) FROM Компьютер"), came);
        QCOMPARE(test::countOf(app.ctx.FilesDBPath, "SELECT count(*) FROM Файлы"), came * 100);
        QCOMPARE(test::countOf(app.ctx.FilesDBPath, "SELECT count(*) FROM Списки"), came);
        QCOMPARE(test::integrityOf(app.ctx.MainDBPath), QString("ok"));
        QCOMPARE(test::integrityOf(app.ctx.FilesDBPath), QString("ok"));
        QVERIFY(before.startsWith("ok ok ok"));
        stillUsable(app.ctx, disk);
    }

    void saveAsOnAFullDisk()
    {
        SMALL_DISK(disk, 8);
        test::TestApp app;
        Reanimator(app.ctx, 0);
        test::addDiscs(app.folder.path(), computerDiscs(100, 100));
        test::writeFile(disk.file("vinora.db"), "an older copy");
        const QString before = stateOf(app.ctx);
        QVERIFY(disk.fillLeaving(256 * 1024));
        frmMain window(app.ctx);
        window.Form_Load();
        app.prompter.answerPath(disk.path());
        app.prompter.answer(Answer::Yes);
        window.runCommand("ID_DB_Save");
        QCOMPARE(app.prompter.texts().last(), kDiskFull);
        QCOMPARE(stateOf(app.ctx), before);
        QCOMPARE(test::readFile(disk.file("vinora.db")), QByteArray("an older copy"));
        QCOMPARE(QDir(disk.path()).entryList({"*.db", ".*.part"}, QDir::Files | QDir::Hidden),
                 QStringList{"vinora.db"});
        // The export into the same place is told alike.
        QVERIFY(disk.fillLeaving(16 * 1024));
        app.prompter.answerPath(disk.file("export.db"));
        window.runCommand("ID_DB_ExportDB");
        QCOMPARE(app.prompter.texts().last(), kDiskFull);
        QVERIFY(!QFileInfo::exists(disk.file("export.db")));
    }
};

VINORA_TEST_MAIN(tst_diskfull)
#include "tst_diskfull.moc"
