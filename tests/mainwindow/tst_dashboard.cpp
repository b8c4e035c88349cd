#include "../recognition/DiscFixtures.h"
#include "frame/Cp1251.h"
#include "lending/frmAddInDue.h"
#include "lending/frmAddInDueFromMain.h"
#include "lending/frmDue.h"
#include "mainwindow/HelpViewer.h"
#include "mainwindow/MainCommands.h"
#include "mainwindow/frmHelp.h"
#include "mainwindow/frmMain.h"
#include "recognition/DiscIdentity.h"
#include "recognition/DriveWatch.h"
#include "recognition/Drives.h"
#include "recognition/VolumeIdentity.h"
#include "store/Db.h"
#include "store/InfoStamp.h"
#include "store/Reanimator.h"
#include "support/DataRows.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QTimer>

using namespace vinora;

namespace {

// The identifier the catalogue binds an image by.
QString idOf(const QString& image)
{
    return QString::number(readVolumeInfo(image).serial, 16).toUpper();
}

struct Dashboard
{
    test::TestApp app;
    std::unique_ptr<frmMain> window;

    Dashboard() { Reanimator(app.ctx, 0); }

    void exec(const QString& sql, const QVariantList& values = {})
    {
        Db(app.ctx.MainDBPath).exec(sql, values);
    }
    QVariant scalar(const QString& sql) const { return Db(app.ctx.MainDBPath).scalar(sql); }
    // Audio disc `number` of one disc, bound to `image`.
    void boundAudio(int number, const QString& image, const QString& album = {})
    {
        exec("INSERT INTO Аудио (Номер, Название, Альбом, Дисков, КодСтиля, ДискID1_d) VALUES (?, 'Кино', ?, "
             "1, 1, ?)",
             {number, album.isEmpty() ? QVariant() : QVariant(album), idOf(image)});
    }
    void set(const QString& key, const QString& value) { app.ctx.ini().write("Option", key, value); }
    frmMain& open()
    {
        window = std::make_unique<frmMain>(app.ctx);
        // The test runs the ticks itself: the timers keep their state but never fire.
        for (const char* name : {"tmrCheckCD", "tmrNewCD", "tmrFindDue", "tmrTime"}) {
            window->timer(QString::fromLatin1(name)).setInterval(24 * 3600 * 1000);
        }
        window->Form_Load();
        window->show();
        return *window;
    }
    // The window open on `drive`, after the first look at it.
    frmMain& watch(const QString& drive)
    {
        set("Drive", drive);
        open();
        tick();
        return *window;
    }
    QString text(const QString& name) const { return window->label(name)->text(); }
    bool visible(const QString& name) const { return window->label(name)->isVisible(); }
    // The label's text when it is shown.
    QString shown(const QString& name) const { return visible(name) ? text(name) : QString("(hidden)"); }
    QStringList texts(const QStringList& names) const
    {
        QStringList texts;
        for (const QString& name : names) {
            texts.append(text(name));
        }
        return texts;
    }
    // One tick of the drive watch, with its answer from the drive.
    void tick()
    {
        window->tmrCheckCD_Timer();
        QTRY_VERIFY(!window->volumeQueryRunning());
        QCoreApplication::processEvents();
    }
    // The disc picker's answer: `picked` ("number:disc") chosen.
    void pick(const QString& picked)
    {
        app.prompter.handleModal([this, picked](QDialog& dialog) {
            app.ctx.PickedDisc = picked;
            dialog.accept();
            return int(QDialog::Accepted);
        });
    }
};

} // namespace

class tst_dashboard : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};

private slots:
    void countersAndDates()
    {
        Dashboard d;
        d.exec("INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (1, 'A', 1), (2, 'B', 2)");
        d.exec("INSERT INTO Компьютер (Номер, Название, КодОписания) VALUES (1, 'C', 1)");
        {
            Db db(d.app.ctx.MainDBPath);
            StampCatalogueUpdate(db, Category::Audio, QDate(2026, 3, 1));
        }
        d.exec("INSERT INTO ИменаДолжников (Имя) VALUES ('Пётр')");
        d.exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВозврата) VALUES (1, 1, 'AD', "
               "'2027-01-01')");
        d.exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, Долг) VALUES (1, 2, 'AD', 0)");
        d.open();
        QCOMPARE(d.texts({"lblCDsAudio", "lblCDsPC", "lblCDsDVD", "lblCDsAudioUpdate", "lblCDsPCUpdate",
                          "lblCDdueAudio", "lblCDduePC"}),
                 (QStringList{"2", "1", "0", "1 марта 2026 г.", "-", "1", "0"}));
        QCOMPARE(d.window->minimumSize(), QSize(606, 460));
    }

    void overdueSigns_data()
    {
        QTest::addColumn<QStringList>("dueDates"); // of open audio loans; "" for none
        QTest::addColumn<QString>("checkSetting"); // CheckDueOnStartup, "-" for missing
        QTest::addColumn<int>("overdue");          // lblFindDueAudio
        QTest::addColumn<bool>("sign");
        QTest::newRow("due today") << QStringList{"2026-11-22"} << "-" << 1 << true;
        QTest::newRow("due yesterday and today")
            << QStringList{"2026-11-21", "2026-11-22"} << "-" << 2 << true;
        QTest::newRow("due tomorrow") << QStringList{"2026-11-23"} << "-" << 0 << false;
        QTest::newRow("open-ended") << QStringList{""} << "-" << 0 << false;
        QTest::newRow("check turned off") << QStringList{"2026-11-01"} << "0" << 0 << false;
        QTest::newRow("check on") << QStringList{"2026-11-01"} << "1" << 1 << true;
    }

    void overdueSigns()
    {
        QFETCH(QStringList, dueDates);
        QFETCH(QString, checkSetting);
        QFETCH(int, overdue);
        QFETCH(bool, sign);
        Dashboard d;
        d.exec("INSERT INTO ИменаДолжников (Имя) VALUES ('Анна')");
        for (const QString& due : dueDates) {
            d.exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВозврата) VALUES (1, 1, "
                   "'AD', ?)",
                   {due.isEmpty() ? QVariant() : QVariant(due)});
        }
        if (checkSetting != "-") {
            d.set("CheckDueOnStartup", checkSetting);
        }
        frmMain& w = d.open();
        QCOMPARE(d.text("lblFindDueAudio"), QString::number(overdue));
        QCOMPARE(d.text("lblCDdueAudio"), QString::number(dueDates.size()));
        QCOMPARE(w.timer("tmrFindDue").isActive(), sign);
        w.tmrFindDue_Timer();
        QCOMPARE(d.visible("imgFindDueAudio"), sign);
        w.tmrFindDue_Timer();
        QVERIFY(!d.visible("imgFindDueAudio")); // blinking
        QVERIFY(!d.visible("imgFindDuePC"));
    }

    void steadyOverdueSign()
    {
        Dashboard d;
        d.set("tmrDue", "1");
        d.exec("INSERT INTO ИменаДолжников (Имя) VALUES ('Анна')");
        d.exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВозврата) VALUES (1, 1, "
               "'DVD', '2026-01-01')");
        frmMain& w = d.open();
        QCOMPARE(w.timer("tmrFindDue").interval(), 1);
        w.tmrFindDue_Timer();
        w.tmrFindDue_Timer();
        QVERIFY(d.visible("imgFindDueDVD"));
    }

    void blinkInterval_data()
    {
        QTest::addColumn<QString>("tmrCD");
        QTest::addColumn<int>("interval");
        QTest::addColumn<QList<bool>>("shownAfterTicks"); // the sign after each of three ticks
        QTest::newRow("designed") << "-" << 500 << QList<bool>{false, true, false};
        QTest::newRow("3000 / 10") << "3000" << 300 << QList<bool>{false, true, false};
        QTest::newRow("1 steady") << "1" << 1 << QList<bool>{true, true, true};
        QTest::newRow("5 / 10 is 0") << "5" << 0 << QList<bool>{true, true, true};
        QTest::newRow("0") << "0" << 0 << QList<bool>{true, true, true};
    }

    // The line of a known disc blinks with its sign, moving nothing: neither the line, its link
    // nor the block beside them.
    void blinkInterval()
    {
        QFETCH(QString, tmrCD);
        QFETCH(int, interval);
        Dashboard d;
        const QString cue = m_discs.audioCue("blink", {15000});
        d.boundAudio(3, cue, "Звезда по имени Солнце");
        if (tmrCD != u"-") {
            d.set("tmrCD", tmrCD);
        }
        d.set("Drive", cue);
        frmMain& w = d.open();
        if (tmrCD == u"-") {
            w.timer("tmrNewCD").setInterval(500);
        }
        d.tick();
        QCOMPARE(w.timer("tmrNewCD").interval(), interval);
        // A timer of interval 0 never ticks (nor spins the event loop): the sign stays as shown.
        if (interval != 1) { // a steady sign's timer rests after its first tick
            QCOMPARE(w.timer("tmrNewCD").isActive(), interval > 1);
        }
        const auto places = [&] {
            QList<QRect> places;
            for (const char* name : {"lblShareAD", "lblNewAD", "lblCDsDVD"}) {
                const QWidget* widget = w.label(QString::fromLatin1(name));
                places.append(QRect(widget->mapTo(&w, QPoint(0, 0)), widget->size()));
            }
            return places;
        };
        QCoreApplication::processEvents();
        const QList<QRect> before = places();
        QList<bool> shown;
        for (int i = 0; i < 3; ++i) {
            if (w.timer("tmrNewCD").isActive()) {
                w.tmrNewCD_Timer();
            }
            QCoreApplication::processEvents();
            shown.append(d.visible("imgNewAD"));
            QCOMPARE(d.visible("lblNewAD"), shown.last());
            QCOMPARE(places(), before);
        }
        QTEST(shown, "shownAfterTicks");
        QVERIFY(interval > 1 || !w.timer("tmrNewCD").isActive());
    }

    void watchGoesOnBehindAModalWindow()
    {
        Dashboard d;
        const QString cue = m_discs.audioCue("behind", {15000});
        d.boundAudio(5, cue);
        d.set("Drive", cue);
        frmMain& w = d.open();
        QDialog modal(&w);
        QString shownBehind;
        QTimer::singleShot(0, &modal, [&] {
            d.tick();
            shownBehind = d.text("lblNewAD");
            modal.reject();
        });
        modal.exec();
        QCOMPARE(shownBehind, "Диск № 5:\nКино");
    }

    void loanCommandsRefreshTheCounters()
    {
        Dashboard d;
        d.exec("INSERT INTO Аудио (Номер, Название, Дисков, КодСтиля) VALUES (12, 'Кино', 1, 1)");
        frmMain& w = d.open();
        QCOMPARE(d.text("lblCDdueAudio"), "0");
        // Lent from the logo's menu: the quick loan, ending in the lending dialog.
        d.app.prompter.handleModal([](QDialog& quick) {
            quick.findChild<QLineEdit*>("txtNumber")->setText("12");
            static_cast<frmAddInDueFromMain&>(quick).cmdOK_Click();
            return 0;
        });
        d.app.prompter.answer(Answer::Ok);
        d.app.prompter.handleModal([](QDialog& lend) {
            lend.findChild<QComboBox*>("txtFIO")->setEditText("Анна");
            static_cast<frmAddInDue&>(lend).cmdAdd();
            return lend.result();
        });
        w.runCommand("ID_QuickADNewDue");
        QCOMPARE(d.text("lblCDdueAudio"), "1");
        // Taken back in the debtor list.
        d.app.prompter.handleModal([](QDialog& list) {
            static_cast<frmDue&>(list).cmdDelete();
            return 0;
        });
        d.app.prompter.answer(Answer::Yes);
        w.listBarItemClicked("g2", "Список должников");
        QCOMPARE(d.text("lblCDdueAudio"), "0");
    }

    void boundImageIsRecognisedAndUnbound()
    {
        Dashboard d;
        const QString cue = m_discs.audioCue("bound", {15000, 15000, 15000});
        d.exec("INSERT INTO Аудио (Номер, Название, Альбом, Дисков, КодСтиля, ДискID1_d, ДискID2_d) "
               "VALUES (12, 'Кино', 'Группа крови', 2, 1, 'FFFF', ?)",
               {idOf(cue)});
        frmMain& w = d.watch(cue);
        QCOMPARE(d.shown("lblNewAD"), "Диск № 12 (CD2):\nКино - Группа крови");
        QCOMPARE(d.shown("lblShareAD"), "Удалить привязку");
        // The same disc on the next tick costs nothing and changes nothing.
        d.tick();
        QCOMPARE(d.shown("lblShareAD"), "Удалить привязку");

        d.app.prompter.answer(Answer::Yes);
        QTest::mouseClick(w.label("lblShareAD"), Qt::LeftButton); // the link is a label that answers clicks
        QCOMPARE(d.app.prompter.texts().last(), "Вы уверены, что хотите удалить привязку с этого диска?");
        QVERIFY(d.scalar("SELECT ДискID2_d FROM Аудио").isNull());
        QCOMPARE(d.scalar("SELECT ДискID1_d FROM Аудио").toString(), "FFFF");
        d.tick();
        QCOMPARE(d.text("lblNewAD"), "Диск (?)\nне привязан не к одному номеру в каталоге");
        QCOMPARE(d.shown("lblShareAD"), "Привязать");

        // The disc taken out: within a tick every sign is gone.
        QFile::remove(cue);
        d.tick();
        QVERIFY(!d.visible("lblNewAD"));
        QVERIFY(!d.visible("lblShareAD"));
        QVERIFY(!w.label("StatusBarPanel3")->pixmap().isNull());
    }

    void bindingTheDiscInTheDrive()
    {
        Dashboard d;
        const QString cue = m_discs.audioCue("tobind", {15000, 16000, 17000});
        d.exec("INSERT INTO Аудио (Номер, Название, Альбом, Дисков, КодСтиля, ДискID2_d) "
               "VALUES (12, 'Кино', 'Звезда', 3, 1, 'OLD')");
        d.exec("INSERT INTO Аудио (Номер, Название, Дисков, КодСтиля) VALUES (13, 'Другой', 1, 1)");
        frmMain& w = d.watch(cue);
        QCOMPARE(d.shown("lblShareAD"), "Привязать");
        QVERIFY(w.label("lblShareAD")->isEnabled());

        // The picker cancelled: nothing changes.
        d.app.prompter.handleModal([](QDialog&) { return int(QDialog::Rejected); });
        QTest::mouseClick(w.label("lblShareAD"), Qt::LeftButton);
        QCOMPARE(d.app.ctx.PickedDisc, QString());

        // Disc 2 of number 12 is already bound: a warning, then the question.
        d.pick("12:2");
        d.app.prompter.answer(Answer::Yes);
        QTest::mouseClick(w.label("lblShareAD"), Qt::LeftButton);
        QCOMPARE(d.app.prompter.texts().mid(d.app.prompter.texts().size() - 3),
                 (QStringList{"Диск № 12 уже привязан к другому номеру диска!",
                              "Установить привязку на диск №12 (CD2):\nКино - Звезда?",
                              "Привязка успешно установлена на диск №12 (CD2)"}));
        QCOMPARE(d.app.ctx.PickedDisc, QString());
        d.tick();
        QCOMPARE(d.text("lblNewAD"), "Диск № 12 (CD2):\nКино - Звезда");

        // A disc that is the first disc of another row is not bound again.
        d.exec("UPDATE Аудио SET ДискID2_d = NULL");
        d.exec("UPDATE Аудио SET ДискID1_d = ? WHERE Номер = 13", {idOf(cue)});
        d.pick("12:1");
        w.bindDiscInDrive(Category::Audio, cue);
        QCOMPARE(d.app.prompter.texts().last(), "Этот диск уже привязан к №13!");
        QVERIFY(d.scalar("SELECT ДискID1_d FROM Аудио WHERE Номер = 12").isNull());
    }

    void unbindingTouchesTheFirstRowOnly()
    {
        Dashboard d;
        d.exec("INSERT INTO DVD (Номер, Название, КодЖанр, ДискID1_d, ДискID3_d) VALUES (1, 'A', 1, 'ID', "
               "'ID')");
        d.exec("INSERT INTO DVD (Номер, Название, КодЖанр, ДискID2_d) VALUES (2, 'B', 1, 'ID')");
        Db db(d.app.ctx.MainDBPath);
        QVERIFY(unbindDisc(db, Category::Dvd, "ID"));
        QVERIFY(
            db.scalar("SELECT ДискID1_d IS NULL AND ДискID3_d IS NULL FROM DVD WHERE Номер = 1").toBool());
        QCOMPARE(db.scalar("SELECT ДискID2_d FROM DVD WHERE Номер = 2").toString(), "ID");
        QVERIFY(unbindDisc(db, Category::Dvd, "ID"));
        QVERIFY(!unbindDisc(db, Category::Dvd, "ID"));
    }

    void singleDiscEndsInAColon()
    {
        Dashboard d;
        const QString iso = m_discs.iso("single.iso", {"-J", "-V", "SOFT"});
        // A binding left in slot 2 after the set was reduced to one disc.
        d.exec("INSERT INTO Компьютер (Номер, Название, КодОписания, Дисков, ДискID2_d) VALUES (7, 'Офис', "
               "1, 1, ?)",
               {idOf(iso)});
        d.watch(iso);
        QCOMPARE(d.text("lblNewPC"), "Диск № 7:\nОфис");
        QVERIFY(!d.visible("lblNewAD"));
    }

    void unknownDiscInEmptyCatalogueHasNoLink()
    {
        Dashboard d;
        frmMain& w = d.watch(m_discs.udf("film.udf", "FILM"));
        QVERIFY(!d.visible("lblShareDVD"));
        QVERIFY(w.timer("tmrNewCD").isActive());
        w.tmrNewCD_Timer();
        QVERIFY(d.visible("imgNewDVD"));
        QCOMPARE(d.text("lblNewDVD"), "Диск (?)\nне привязан не к одному номеру в каталоге");
    }

    void watchingCanBeTurnedOff()
    {
        Dashboard d;
        d.set("CheckCD", "0");
        frmMain& w = d.open();
        QVERIFY(!w.timer("tmrCheckCD").isActive());
        QVERIFY(!w.timer("tmrNewCD").isActive());
        d.set("CheckCD", "1");
        w.CheckCD();
        QVERIFY(w.timer("tmrCheckCD").isActive());
    }

    void noDriveSettingDoesNothing()
    {
        Dashboard d;
        frmMain& w = d.open();
        w.tmrCheckCD_Timer();
        QVERIFY(!w.volumeQueryRunning());
        QVERIFY(w.label("StatusBarPanel3")->pixmap().isNull());
    }

    void externalDatabase()
    {
        Dashboard d;
        d.exec("INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (1, 'Local', 1)");
        Dashboard other; // a friend's catalogue, copied to a file of another name
        other.exec(
            "INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (1, 'A', 1), (2, 'B', 1), (3, 'C', 1)");
        const QString friendDb = other.app.file("friend.db");
        QVERIFY(QFile::rename(other.app.ctx.MainDBPath, friendDb));
        frmMain& w = d.open();
        const QString localPath = d.app.ctx.MainDBPath;

        d.app.prompter.answerPath(friendDb);
        w.runCommand("ID_DB_Open");
        QVERIFY(d.app.ctx.ExternalDBOpen);
        QCOMPARE(w.statusPanelText(1), "База данных - внешняя (файл: 'friend.db')");
        QCOMPARE(d.texts({"lblCDsAudio", "lblCDdueAudio", "lblCDsAudioUpdate"}),
                 (QStringList{"3", "-", "-"}));
        QCOMPARE(w.listBarGroups(), QStringList{"1"});
        QVERIFY(!w.action("ID_Catalog_ChangeCategory")->isEnabled());
        QVERIFY(w.action("ID_DB_OpenLocal")->isEnabled());
        QVERIFY(!w.driveSelector()->isEnabled());
        QVERIFY(!w.timer("tmrCheckCD").isActive());
        w.listBarItemClicked("g2", "Список должников");
        QCOMPARE(d.app.prompter.shown.last().text, "qwe");
        QCOMPARE(d.app.prompter.shown.last().style, MessageStyle::Plain);

        d.app.prompter.answerPath(friendDb);
        w.runCommand("ID_DB_Open");
        QCOMPARE(d.app.prompter.texts().last(), "База данных 'friend.db' уже открыта.");

        w.runCommand("ID_DB_OpenLocal");
        QVERIFY(!d.app.ctx.ExternalDBOpen);
        QCOMPARE(d.app.ctx.MainDBPath, localPath);
        QCOMPARE(w.statusPanelText(1), "База данных - локальная");
        QCOMPARE(d.text("lblCDsAudio"), "1");
        QCOMPARE(w.listBarGroups(), (QStringList{"1", "g2", "g3", "g4"}));
        QVERIFY(w.action("ID_Catalog_ChangeCategory")->isEnabled());
        QVERIFY(!w.action("ID_DB_OpenLocal")->isEnabled());
        QVERIFY(w.timer("tmrCheckCD").isActive());
    }

    void foreignFileAsExternalDatabase()
    {
        Dashboard d;
        const QString text = m_dir.filePath("notes.db");
        test::writeFile(text, "not a database at all\n");
        frmMain& w = d.open();
        d.app.prompter.answerPath(text);
        w.runCommand("ID_DB_Open");
        QCOMPARE(
            d.app.prompter.texts().last(),
            "ОШИБКА!\n\nБаза данных имеет атрибут 'только чтение', повреждена или имеет не верный формат.");
        QVERIFY(!d.app.ctx.ExternalDBOpen);
        QCOMPARE(w.statusPanelText(1), "База данных - локальная");
        QCOMPARE(d.app.ctx.MainDBPath, d.app.file("vinora.db"));
        QCOMPARE(test::readFile(text), QByteArray("not a database at all\n"));
    }

    void lastAction_data()
    {
        test::addColumns<QString>({"stored", "command"}); // stored "-" for missing
        const auto row = test::addRow<QString, QString>;
        row("missing", "-", "ID_Catalog_AddAudioCD");
        row("1", "1", "ID_Catalog_AddAudioCD");
        row("2", "2", "ID_Catalog_AddPCCD");
        row("3", "3", "ID_Catalog_AddDVD");
        row("9", "9", "");
        row("garbage", "x", "");
    }

    void lastAction()
    {
        QFETCH(QString, stored);
        QTEST(lastAddCommand(stored == "-" ? QString() : stored, stored != "-"), "command");
    }

    void deletingAShortcutRenumbers()
    {
        Dashboard d;
        test::writeFile(
            d.app.file("query.ini"),
            cp1251::encode(QStringLiteral("[Query]\nCount=3\n[1]\nName=Рок\n[2]\nName=Джаз\n[3]\nName=Игры\n"
                                          "[Рок]\nNum=1\nCategory=AD\n[Джаз]\nNum=2\nCategory=AD\n"
                                          "[Игры]\nNum=3\nCategory=PC\n")));
        frmMain& w = d.open();
        QCOMPARE(w.listBarItems("g4"), (QStringList{"Рок", "Джаз", "Игры"}));
        d.app.prompter.answer(Answer::No);
        w.deleteShortcut("Рок");
        QCOMPARE(w.listBarItems("g4").size(), 3);
        d.app.prompter.answer(Answer::Yes);
        w.deleteShortcut("Рок");
        QCOMPARE(d.app.prompter.texts().last(), "Вы дейсвительно хотите удалить ярлык 'Рок'?");
        const IniFile ini = d.app.ctx.queryIni();
        QCOMPARE(ini.read("Query", "Count", 55), "2");
        QCOMPARE(ini.read("1", "Name", 55), "Джаз");
        QCOMPARE(ini.read("2", "Name", 55), "Игры");
        QCOMPARE(ini.read("3", "Name", 55), "");
        QCOMPARE(ini.read("Джаз", "Num", 55), "1");
        QCOMPARE(ini.read("Игры", "Num", 55), "2");
        QCOMPARE(ini.read("Рок", "Category", 55), "");
        QCOMPARE(w.listBarItems("g4"), (QStringList{"Джаз", "Игры"}));

        ini.removeSection("Игры");
        w.listBarItemClicked("g4", "Игры");
        QCOMPARE(d.app.prompter.texts().last(), "Запрос с именем 'Игры' ее найден!");
    }

    void garbageFilesStillOpen()
    {
        Dashboard d;
        QByteArray garbage("[Query]\nCount=999999\n[1]\nName=\x01\x02\x03\n");
        garbage += QByteArray(2000, '\xFE');
        test::writeFile(d.app.file("query.ini"), garbage);
        test::writeFile(d.app.file("vinora.ini"),
                        QByteArray("[Option]\nDrive=\x05\x06/nowhere\ntmrCD=abc\nCheckCD=\xFF\n") +
                            QByteArray(500, '\0'));
        frmMain& w = d.open();
        QVERIFY(w.listBarItems("g4").size() <= 1);
        d.tick();
        QVERIFY(!d.visible("lblNewAD"));
    }

    void driveSelectorAndImages()
    {
        Dashboard d;
        const QString iso = m_discs.iso("sel.iso", {"-V", "SEL"});
        frmMain& w = d.open();
        d.app.prompter.answerPath(iso);
        w.runCommand("ID_DB_DiskImageAdd");
        QCOMPARE(w.driveSelector()->currentData().toString(), iso);
        QCOMPARE(w.driveSelector()->currentText(), "sel.iso");
        QCOMPARE(d.app.ctx.ini().read("Option", "Drive", 4096), iso);
        QVERIFY(w.driveSelector()->isEnabled());
        d.tick();
        QVERIFY(w.timer("tmrNewCD").isActive()); // an unknown data disc: the sign blinks
        w.runCommand("ID_DB_DiskImageRemove");
        QVERIFY(w.driveSelector()->findData(iso) < 0);
    }

    void helpIsReadInsideTheProgram()
    {
        Dashboard d;
        frmMain& w = d.open(); // no desktop browser is needed
        w.runCommand("ID_Help_Info");
        QVERIFY(w.helpViewer()->isVisible());
        QCOMPARE(w.helpViewer()->windowTitle(), "readme.txt");
        QCOMPARE(w.helpViewer()->browser()->toPlainText(),
                 QString::fromUtf8(test::readFile(shippedFile("readme.txt"))));
        w.runCommand("ID_Help_Index");
        QCOMPARE(w.helpViewer()->windowTitle(), "vinora — справка");
        QVERIFY(w.helpViewer()->browser()->toPlainText().contains("Устройства и образы дисков"));
        QVERIFY(d.app.prompter.openedUrls.isEmpty());
        QVERIFY(!d.app.prompter.texts().contains("Файл справки не найден!"));
        QString shownVersion;
        d.app.prompter.handleModal([&](QDialog& dialog) {
            shownVersion = dialog.findChild<QLabel*>("lblVersion")->text();
            return 0;
        });
        w.runCommand("ID_Help_About");
        QCOMPARE(shownVersion, "vinora 1.0 build 1");
    }

    void changeCategoryOfTheDiscInTheDrive_data()
    {
        QTest::addColumn<QString>("remembered"); // CurrentDiscID left by an earlier disc
        QTest::addColumn<bool>("goAhead");
        QTest::newRow("nothing remembered") << "" << true;
        QTest::newRow("another disc remembered") << "DEADBEEF" << true;
        QTest::newRow("answered No") << "" << false;
    }

    void changeCategoryOfTheDiscInTheDrive()
    {
        QFETCH(QString, remembered);
        QFETCH(bool, goAhead);
        Dashboard d;
        const QString iso = m_discs.iso("cat.iso", {"-V", "CAT"});
        addVirtualDrive(d.app.ctx.ini(), iso);
        d.set("Drive", iso);
        frmMain& w = d.open();
        d.app.ctx.CurrentDiscID = remembered;
        d.app.prompter.answer(goAhead ? Answer::Yes : Answer::No);
        d.app.prompter.handleModal([](QDialog& dialog) {
            dialog.findChild<QWidget*>("optDVD")->setProperty("checked", true);
            return int(QDialog::Accepted);
        });
        w.runCommand("ID_Catalog_ChangeCategory");
        QCOMPARE(d.app.ctx.skipIni().read("CD", idOf(iso), 15), QString::fromLatin1(goAhead ? "DVD" : ""));
        QVERIFY(w.timer("tmrCheckCD").isActive()); // the watch goes on, whatever the answer
        // Only the disc in the drive is written: no entry without an identifier, no other disc.
        const QString stored = QString::fromUtf8(test::readFile(d.app.ctx.appFolder() + "/skipcd.ini"));
        QVERIFY2(!stored.contains("\n=") && !stored.startsWith(u'='), qPrintable(stored));
        QVERIFY(!stored.contains("DEADBEEF"));
    }

    void entryWithoutIdentifierIsIgnored()
    {
        // A settings file holding "=n/a" (left by an older version) must not turn a volume
        // without a serial into "no disc".
        Dashboard d;
        test::writeFile(d.app.ctx.appFolder() + "/skipcd.ini", "[CD]\r\n=n/a\r\n");
        VolumeInfo volume;
        volume.ok = true;
        volume.maxComponentLength = 221;
        volume.label = "DATA";
        QCOMPARE(kindOfVolume(d.app.ctx, volume, [] { return std::optional<QString>(); }), "PcCD");
    }
};

VINORA_TEST_MAIN(tst_dashboard)
#include "tst_dashboard.moc"
