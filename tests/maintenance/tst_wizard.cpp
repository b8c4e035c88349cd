#include "SampleCollection.h"
#include "catalogue/frmEditDictionary.h"
#include "maintenance/frmDBWizard.h"
#include "maintenance/frmReanimation.h"
#include "store/DatabaseLock.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

using namespace vinora;

namespace {

const QStringList kBackups = {"backup_of_vinora.db", "backup_of_vinora_files.db",
                              "backup_of_vinora_tracks.db"};

struct Wizard
{
    test::TestApp app;
    Wizard()
    {
        Reanimator(app.ctx, 0);
        test::addDiscs(app.folder.path(), {{Category::Audio, 1, "Кино", "Звезда", "Rock", {"A1"}},
                                           {Category::Computer, 1, "Игры", {}, "Квест", {"C1"}, 50}});
    }
    QString text(frmDBWizard& window, const char* label) const
    {
        return window.label(QString::fromLatin1(label))->text();
    }
    void click(frmDBWizard& window, int index) const
    {
        QTest::mouseClick(window.button(index), Qt::LeftButton);
    }
    QString backup(int i) const { return app.file(kBackups[i]); }
    int discs(const QString& path) const { return test::countOf(path, "SELECT count(*) FROM Аудио"); }
    QString sizeOfDatabases() const
    {
        qint64 total = 0;
        for (const QString& path : {app.ctx.MainDBPath, app.ctx.FilesDBPath, app.ctx.TracksDBPath}) {
            total += QFileInfo(path).size();
        }
        return QString::number(total / 1024) + " Kб";
    }
};

// Pages left free by rows written and deleted: what compaction gives back.
void leaveFreePages(const QString& path)
{
    Db db(path);
    Transaction transaction(db);
    db.exec("CREATE TABLE Мусор (Текст TEXT)");
    Statement insert(db, "INSERT INTO Мусор VALUES (?)");
    for (int i = 0; i < 2000; ++i) {
        insert.run({QString(200, u'ж')});
    }
    db.exec("DROP TABLE Мусор");
    transaction.commit();
}

} // namespace

class tst_wizard : public QObject
{
    Q_OBJECT

private slots:
    void backupMadeAndUpdated()
    {
        Wizard w;
        frmDBWizard window(w.app.ctx);
        w.click(window, 2); // the first backup asks nothing
        QCOMPARE(w.app.prompter.texts(),
                 QStringList{"Создание/обновление резервной копии данных успешно завершено."});
        QCOMPARE(w.text(window, "lblLastBackup"), QString("от 22 ноября 2026 г."));
        QVERIFY(window.button(1)->isEnabled() && window.button(3)->isEnabled());
        qint64 size = 0;
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(test::integrityOf(w.backup(i)), QString("ok"));
            size += QFileInfo(w.backup(i)).size();
        }
        QCOMPARE(w.text(window, "lblFileBackupLen"), QString::number(size / 1024) + " Kб");
        QCOMPARE(test::countOf(w.backup(1), "SELECT count(*) FROM Файлы"), 50);
        // The date lies in the live database, not in the set.
        QCOMPARE(test::valueOf(w.app.ctx.MainDBPath, "SELECT РезервнаяКопия FROM _Информация").toString(),
                 QString("2026-11-22"));
        QVERIFY(test::valueOf(w.backup(0), "SELECT РезервнаяКопия FROM _Информация").isNull());

        // The update asks first: No leaves the set, Yes takes the new disc in.
        test::addDiscs(w.app.folder.path(), {{Category::Audio, 2, "Сплин", "", "Rock", {}}});
        w.app.prompter.answer(Answer::No);
        w.click(window, 2);
        QCOMPARE(w.discs(w.backup(0)), 1);
        w.app.prompter.answer(Answer::Yes);
        w.click(window, 2);
        QCOMPARE(w.app.prompter.texts().mid(1, 2),
                 (QStringList{"Вы действительно хотите обновить файлы резервной копии?",
                              "Вы действительно хотите обновить файлы резервной копии?"}));
        QCOMPARE(w.discs(w.backup(0)), 2);
        QCOMPARE(
            QDir(w.app.folder.path()).entryList({"*.part", "*.before-restore"}, QDir::Files | QDir::Hidden),
            QStringList());
    }

    void incompleteBackupSet_data()
    {
        QTest::addColumn<int>("missing"); // -1: no set was ever made
        QTest::newRow("no set") << -1;
        for (int i = 0; i < 3; ++i) {
            QTest::newRow(kBackups[i].toUtf8().constData()) << i;
        }
    }

    void incompleteBackupSet()
    {
        QFETCH(int, missing);
        Wizard w;
        if (missing >= 0) {
            frmDBWizard first(w.app.ctx);
            first.cmdCreate();
            QFile::remove(w.backup(missing));
            w.app.prompter.shown.clear();
        }
        frmDBWizard window(w.app.ctx);
        QCOMPARE(w.text(window, "lblLastBackup"), QString("-"));
        QCOMPARE(w.text(window, "lblFileBackupLen"), QString("0 Kб"));
        QCOMPARE(w.text(window, "lblFileDBLen"), w.sizeOfDatabases());
        QVERIFY(!window.button(1)->isEnabled() && window.button(2)->isEnabled() &&
                !window.button(3)->isEnabled());
        w.app.prompter.answer(Answer::Yes);
        window.cmdRecover();
        window.cmdDelete();
        const QString notFound = "ОШИБКА.\n\nФайл резервной копии данных не найден!";
        QCOMPARE(w.app.prompter.texts(),
                 (QStringList{"Вы действительно хотите восстановить резервную копию данных?", notFound,
                              notFound}));
        QCOMPARE(w.app.prompter.shown.last().style, MessageStyle::Stop);
        QCOMPARE(QFileInfo::exists(w.backup((missing + 1) % 3)), missing >= 0);
    }

    void restoreKeepsTheEarlierBackupDate()
    {
        Wizard w;
        frmDBWizard window(w.app.ctx);
        window.cmdCreate();
        w.app.clock.set(QDateTime(QDate(2026, 12, 1), QTime(10, 0)));
        w.app.prompter.answer(Answer::Yes);
        window.cmdCreate(); // the set's own date is now 22 November
        test::addDiscs(w.app.folder.path(), {{Category::Audio, 2, "После копии", "", "Rock", {"A9"}}});
        const quint64 inode = test::inodeOf(w.app.ctx.MainDBPath);
        w.app.prompter.shown.clear();
        w.app.prompter.answer(Answer::Yes);
        w.click(window, 1);
        QCOMPARE(w.app.prompter.texts(),
                 (QStringList{"Вы действительно хотите восстановить резервную копию данных?",
                              "Резервная копия данных успешно восстановлена."}));
        QCOMPARE(w.text(window, "lblLastBackup"), QString("восстановлена"));
        QCOMPARE(w.discs(w.app.ctx.MainDBPath), 1);
        QCOMPARE(test::countOf(w.app.ctx.TracksDBPath, "SELECT count(*) FROM Списки WHERE ДискID = 'A9'"), 0);
        QCOMPARE(test::valueOf(w.app.ctx.MainDBPath, "SELECT РезервнаяКопия FROM _Информация").toString(),
                 QString("2026-12-01"));
        // Written into the file in place, never replaced by another file.
        QCOMPARE(test::inodeOf(w.app.ctx.MainDBPath), inode);
        QCOMPARE(QDir(w.app.folder.path()).entryList({"*.before-restore"}, QDir::Files | QDir::Hidden),
                 QStringList());
    }

    void backupDeleted_data()
    {
        QTest::addColumn<bool>("yes");
        QTest::newRow("Yes") << true;
        QTest::newRow("No") << false;
    }

    void backupDeleted()
    {
        QFETCH(bool, yes);
        Wizard w;
        frmDBWizard window(w.app.ctx);
        window.cmdCreate();
        w.app.prompter.answer(yes ? Answer::Yes : Answer::No);
        w.click(window, 3);
        QCOMPARE(w.app.prompter.texts().last(),
                 QString("Вы действительно хотите удалить резервную копию данных?"));
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(QFileInfo::exists(w.backup(i)), !yes);
        }
        QCOMPARE(w.text(window, "lblLastBackup"), yes ? QString("-") : QString("от 22 ноября 2026 г."));
        QCOMPARE(w.text(window, "lblFileBackupLen") == "0 Kб", yes);
        QCOMPARE(window.button(1)->isEnabled(), !yes);
        QCOMPARE(test::valueOf(w.app.ctx.MainDBPath, "SELECT РезервнаяКопия FROM _Информация").isNull(), yes);
    }

    void backupStaysInTheApplicationFolder()
    {
        test::TestApp app;
        QTemporaryDir elsewhere;
        app.ctx.setDatabaseFolder(elsewhere.path());
        Reanimator(app.ctx, 0);
        frmDBWizard window(app.ctx);
        window.cmdCreate();
        for (const QString& name : kBackups) {
            QVERIFY(QFileInfo::exists(app.file(name)));
            QVERIFY(!QFileInfo::exists(QDir(elsewhere.path()).filePath(name)));
        }
    }

    void compactionTwice()
    {
        Wizard w;
        leaveFreePages(w.app.ctx.FilesDBPath);
        const quint64 inode = test::inodeOf(w.app.ctx.FilesDBPath);
        const qint64 before = QFileInfo(w.app.ctx.FilesDBPath).size();
        frmDBWizard window(w.app.ctx);
        w.app.prompter.answer(Answer::Cancel);
        w.click(window, 8);
        QCOMPARE(QFileInfo(w.app.ctx.FilesDBPath).size(), before);
        w.app.prompter.answer(Answer::Ok);
        w.click(window, 8);
        const qint64 gain = before - QFileInfo(w.app.ctx.FilesDBPath).size();
        QVERIFY(gain > 100 * 1024);
        const QString question =
            "Этот процесс может занять некоторое время, в зависимости от объема файлов базы "
            "данных!\nПродолжить?";
        QCOMPARE(w.app.prompter.texts().mid(0, 2), (QStringList{question, question}));
        QCOMPARE(w.app.prompter.shown[1].style, MessageStyle::OkCancelQuestion);
        const QString told = w.app.prompter.texts().last();
        QVERIFY2(told.startsWith("Операция успешно завершена! Файлы базы данных сжаты на ") &&
                     told.endsWith(" Кб."),
                 qPrintable(told));
        const int reported = told.section(" на ", 1).section(' ', 0, 0).toInt();
        QVERIFY2(qAbs(reported - gain / 1024) <= 1, qPrintable(told));
        QVERIFY(w.text(window, "lblFileDBLen").endsWith(" Кб"));
        // The second run finds nothing to give back.
        w.app.prompter.answer(Answer::Ok);
        window.cmdCompress();
        QCOMPARE(w.app.prompter.texts().last(),
                 QString("Операция успешно завершена! Файлы базы данных не были сжаты."));
        QCOMPARE(test::inodeOf(w.app.ctx.FilesDBPath), inode);
        QCOMPARE(QDir(w.app.folder.path()).entryList({"~*"}, QDir::Files | QDir::Hidden), QStringList());
        QCOMPARE(test::countOf(w.app.ctx.FilesDBPath, "SELECT count(*) FROM Файлы"), 50);
    }

    // vinora-cli writing: the routines that need the databases to themselves wait for it.
    void anotherWriterAtWork()
    {
        Wizard w;
        frmDBWizard window(w.app.ctx);
        window.cmdCreate();
        test::addDiscs(w.app.folder.path(), {{Category::Audio, 2, "Сплин", "", "Rock", {}}});
        w.app.prompter.shown.clear();
        const DatabaseLock writer =
            DatabaseLock::acquire(w.app.ctx.MainDBPath, DatabaseLock::Mode::Shared, [] {});
        w.app.prompter.answer(Answer::Yes);
        window.cmdCreate();
        w.app.prompter.answer(Answer::Yes);
        window.cmdRecover();
        w.app.prompter.answer(Answer::Ok);
        window.cmdCompress();
        const QString busy =
            "С базами данных сейчас работает другая программа (vinora-cli).\n\nПовторите действие, "
            "когда она закончит работу.";
        QCOMPARE(w.app.prompter.texts().filter("vinora-cli"), (QStringList{busy, busy, busy}));
        QCOMPARE(w.discs(w.app.ctx.MainDBPath), 2);
        QCOMPARE(w.discs(w.backup(0)), 1);
    }

    void dictionaryEditorsAndTheirCounts_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<QString>("form");
        QTest::addColumn<QString>("label");
        QTest::addColumn<int>("count"); // before a name is added
        QTest::newRow("styles") << 4 << QString("frmEditStyle") << QString("lblStyleCurrent") << 31;
        QTest::newRow("descriptions")
            << 5 << QString("frmEditDescription") << QString("lblDescriptionCurrent") << 23;
        QTest::newRow("genres") << 6 << QString("frmEditGenre") << QString("lblGanreCurrent") << 10;
    }

    void dictionaryEditorsAndTheirCounts()
    {
        QFETCH(int, button);
        QFETCH(QString, label);
        QFETCH(int, count);
        Wizard w;
        frmDBWizard window(w.app.ctx);
        QCOMPARE(window.label(label)->text(), QString::number(count));
        QString opened;
        w.app.prompter.handleModal([&](QDialog& dialog) {
            opened = dialog.objectName();
            w.app.prompter.answerInput(QString("Новое"));
            static_cast<frmEditDictionary&>(dialog).cmdAdd();
            return 0;
        });
        w.click(window, button);
        QTEST(opened, "form");
        QCOMPARE(window.label(label)->text(), QString::number(count + 1));
    }

    void repairWindowAndBack_data()
    {
        QTest::addColumn<bool>("rebuilt");
        QTest::newRow("closed") << false;
        QTest::newRow("databases rebuilt") << true;
    }

    void repairWindowAndBack()
    {
        QFETCH(bool, rebuilt);
        Wizard w;
        frmDBWizard window(w.app.ctx);
        window.show();
        bool hiddenMeanwhile = false;
        w.app.prompter.handleModal([&](QDialog& dialog) {
            hiddenMeanwhile = window.isHidden();
            auto& repair = static_cast<frmReanimation&>(dialog);
            if (rebuilt) {
                repair.findChild<QRadioButton*>("optReanimation0")->setChecked(true);
                w.app.prompter.answer(Answer::Ok);
                repair.cmdStart();
            }
            return 0;
        });
        w.click(window, 7);
        QVERIFY(hiddenMeanwhile);
        QCOMPARE(window.isVisible(), !rebuilt);
        QCOMPARE(w.discs(w.app.ctx.MainDBPath), rebuilt ? 0 : 1);
    }
};

VINORA_TEST_MAIN(tst_wizard)
#include "tst_wizard.moc"
