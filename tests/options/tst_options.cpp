// The options dialog: what it shows for the settings file, what OK writes, the folder of
// the databases changed at once, the disc images, and the tool bars' dialog.
#include "frame/AppContext.h"
#include "frame/IniFile.h"
#include "mainwindow/frmMain.h"
#include "mainwindow/frmToolbars.h"
#include "options/frmOption.h"
#include "recognition/Drives.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/Widgets.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

using namespace vinora;

namespace {

struct App
{
    App() { Reanimator(app.ctx, 0); }
    test::TestApp app;
    IniFile ini() const { return app.ctx.ini(); }
    QString option(const QString& key) const { return ini().read(QStringLiteral("Option"), key, 4096); }
    QString sorted(const QString& key) const { return ini().read(QStringLiteral("Sorted"), key, 255); }
    void set(const QString& key, const QString& value) const
    {
        ini().write(QStringLiteral("Option"), key, value);
    }
    // An empty file standing for a disc image, registered as a drive.
    QString image(const QString& name) const
    {
        const QString path = app.folder.filePath(name);
        test::writeFile(path, "image");
        addVirtualDrive(ini(), path);
        return path;
    }
};

using test::child;

void click(const QObject& dialog, const char* button)
{
    child<QAbstractButton>(dialog, button)->click();
}

const QStringList kSortKeys = {"ADCDsorted",     "ADCDsortedDESC", "PCCDsorted",
                               "PCCDsortedDESC", "DVDsorted",      "DVDsortedDESC",
                               "DUEsorted",      "DUEsortedDESC",  "DUEsortedDisk"};

} // namespace

class tst_options : public QObject
{
    Q_OBJECT

private slots:
    // ---- what the dialog shows --------------------------------------------------------

    void indicatorRows_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value"); // "-" for a missing key
        QTest::addColumn<QString>("label");
        QTest::addColumn<bool>("still");
        QTest::addColumn<bool>("sliderEnabled");
        QTest::addColumn<QString>("written");
        QTest::newRow("tmrDue missing")
            << QString("tmrDue") << QString("-") << "2500 мс" << false << true << "2500";
        QTest::newRow("tmrCD missing") << QString("tmrCD") << QString("-") << "0 мс" << false << false << "0";
        QTest::newRow("tmrDueCatalogue missing")
            << QString("tmrDueCatalogue") << QString("-") << "1500 мс" << false << true << "1500";
        QTest::newRow("still") << QString("tmrDue") << QString("1") << "0 мс" << true << false << "1";
        QTest::newRow("tenths kept") << QString("tmrCD") << QString("3750") << "3700 мс" << false << true
                                     << "3700";
        QTest::newRow("beyond the slider")
            << QString("tmrDueCatalogue") << QString("99999") << "5000 мс" << false << true << "5000";
        QTest::newRow("not a number")
            << QString("tmrDue") << QString("abc") << "0 мс" << false << true << "0";
    }

    void indicatorRows()
    {
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QString, label);
        QFETCH(bool, still);
        QFETCH(bool, sliderEnabled);
        QFETCH(QString, written);
        App a;
        if (value != u"-") {
            a.set(key, value);
        }
        const QString name = key == u"tmrDue"  ? QStringLiteral("InformerDue")
                             : key == u"tmrCD" ? QStringLiteral("InformerCD")
                                               : QStringLiteral("InformerDueCat");
        frmOption dialog(a.app.ctx);
        QCOMPARE(child<QLabel>(dialog, "lbl" + name)->text(), label);
        QCOMPARE(child<QCheckBox>(dialog, "ch" + name)->isChecked(), still);
        QCOMPARE(child<QSlider>(dialog, "sld" + name)->isEnabled(), sliderEnabled);
        click(dialog, "imgButton0");
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(a.option(key), written);
    }

    void tickingAndSliding()
    {
        App a;
        frmOption dialog(a.app.ctx);
        auto* slider = child<QSlider>(dialog, "sldInformerDue");
        auto* label = child<QLabel>(dialog, "lblInformerDue");
        click(dialog, "chInformerDue");
        QVERIFY(!slider->isEnabled());
        QCOMPARE(label->text(), "0 мс");
        click(dialog, "chInformerDue");
        QVERIFY(slider->isEnabled());
        QCOMPARE(label->text(), "2500 мс");
        slider->setValue(7);
        QCOMPARE(label->text(), "700 мс");
        // The new-disc row starts disabled; unticking its tick brings the slider back.
        click(dialog, "chInformerCD");
        click(dialog, "chInformerCD");
        QVERIFY(child<QSlider>(dialog, "sldInformerCD")->isEnabled());
        click(dialog, "imgButton0");
        QCOMPARE(a.option("tmrDue"), "700");
    }

    void timeoutSteps_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("shown");
        QTest::newRow("up") << "30" << int(Qt::Key_Up) << "31";
        QTest::newRow("down") << "30" << int(Qt::Key_Down) << "29";
        QTest::newRow("stops at 99") << "99" << int(Qt::Key_Up) << "99";
        QTest::newRow("stops at 10") << "10" << int(Qt::Key_Down) << "10";
        QTest::newRow("sorts below 10: up") << "0" << int(Qt::Key_Up) << "10";
        QTest::newRow("sorts below 10: down") << "" << int(Qt::Key_Down) << "10";
        QTest::newRow("sorts above 10, small") << "5" << int(Qt::Key_Down) << "10";
        QTest::newRow("huge") << "999999999999" << int(Qt::Key_Up) << "99";
    }

    void timeoutSteps()
    {
        QFETCH(QString, typed);
        QFETCH(int, key);
        QFETCH(QString, shown);
        App a;
        frmOption dialog(a.app.ctx);
        auto* timeout = child<QLineEdit>(dialog, "txtTimeout");
        QCOMPARE(timeout->text(), "30"); // missing ServerTimeout
        timeout->setText(typed);
        QTest::keyClick(timeout, Qt::Key(key));
        QCOMPARE(timeout->text(), shown);
        timeout->setText(typed);
        click(dialog, key == Qt::Key_Up ? "udTimeoutUp" : "udTimeoutDown");
        QCOMPARE(timeout->text(), shown);
    }

    void badValuesAreToldAndNothingIsWritten_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("message");
        QTest::newRow("time-out text") << QString("txtTimeout") << QString("abc")
                                       << "Время ожидания должно быть числом секунд от 10 до 99.";
        QTest::newRow("time-out too long") << QString("txtTimeout") << QString("5")
                                           << "Время ожидания должно быть числом секунд от 10 до 99.";
        QTest::newRow("server")
            << QString("txtServer4") << "host:port"
            << "Адрес сервера 4 ('host:port') не распознан. Укажите его в виде \"имя\" или "
               "\"имя:порт\".";
    }

    void badValuesAreToldAndNothingIsWritten()
    {
        QFETCH(QString, control);
        QFETCH(QString, text);
        QFETCH(QString, message);
        App a;
        frmOption dialog(a.app.ctx);
        child<QLineEdit>(dialog, control)->setText(text);
        click(dialog, "imgButton0");
        QCOMPARE(a.app.prompter.texts(), QStringList{message});
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        QCOMPARE(a.option("ConfirmExit"), "");
        child<QLineEdit>(dialog, control)
            ->setText(control == u"txtTimeout" ? QStringLiteral("45")
                                               : QStringLiteral("cddb.example.org:8880"));
        click(dialog, "imgButton0");
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(a.option("ConfirmExit"), "1");
    }

    // The catalogue box's caption ends in "в:"; the word beside it names the catalogues and
    // ticks the box like its caption.
    void catalogueSortBoxNamesTheCatalogues()
    {
        App a;
        a.set("SaveSortedCatalogue", "0");
        frmOption dialog(a.app.ctx);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        auto* box = child<QCheckBox>(dialog, "chSaveSortedCatalogue");
        auto* word = child<QLabel>(dialog, "lblSaveSortedCatalogue");
        auto* loans = child<QCheckBox>(dialog, "chSaveSortedDueList");
        QCOMPARE(box->text(), "Сохранять режим сортировки в:");
        QCOMPARE(word->text(), "каталогах");
        QVERIFY(word->isVisible());
        // One row: the box, its word, then the loan list's box.
        const QRect boxAt(box->mapTo(&dialog, QPoint()), box->size());
        const QRect wordAt(word->mapTo(&dialog, QPoint()), word->size());
        const QRect loansAt(loans->mapTo(&dialog, QPoint()), loans->size());
        QVERIFY(wordAt.left() >= boxAt.right());
        QVERIFY(loansAt.left() >= wordAt.right());
        QVERIFY(qAbs(wordAt.center().y() - boxAt.center().y()) <= 2);
        QVERIFY(!box->isChecked());
        QTest::mouseClick(word, Qt::LeftButton);
        QVERIFY(box->isChecked());
        QVERIFY(!loans->isChecked());
        click(dialog, "imgButton0");
        QCOMPARE(a.option("SaveSortedCatalogue"), "1");
    }

    void serverListFollowsTheEdits_data()
    {
        QTest::addColumn<int>("entry"); // 2..7
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::newRow("a server of one's own") << 5 << ""
                                               << "cddb.example.org:8081"
                                               << "5: cddb.example.org:8081";
        QTest::newRow("the usual port goes unsaid") << 6 << ""
                                                    << "my.host:8880"
                                                    << "6: my.host";
        QTest::newRow("replaced") << 2 << "old.example.org"
                                  << "new.example.org"
                                  << "2: new.example.org";
        QTest::newRow("emptied: the default again") << 3 << "old.example.org"
                                                    << ""
                                                    << "3: localhost";
    }

    void serverListFollowsTheEdits()
    {
        QFETCH(int, entry);
        QFETCH(QString, stored);
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        App a;
        const QString key = QStringLiteral("Server%1").arg(entry);
        if (!stored.isEmpty()) {
            a.ini().write("CDDBServers", key, stored);
        }
        a.set("ServerCDDB", QString::number(entry - 1));
        frmOption dialog(a.app.ctx);
        auto* servers = child<QComboBox>(dialog, "cmbServer");
        auto* edit = child<QLineEdit>(dialog, QStringLiteral("txtServer%1").arg(entry));
        const QStringList before = test::items(servers);
        QCOMPARE(before.size(), 7);
        QVERIFY(before[entry - 1] != shown);

        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Backspace);
        QTest::keyClicks(edit, typed);
        QCOMPARE(servers->count(), 7);
        QCOMPARE(servers->currentIndex(), entry - 1);
        QCOMPARE(servers->currentText(), shown);
        for (int i = 0; i < servers->count(); ++i) {
            if (i != entry - 1) {
                QCOMPARE(servers->itemText(i), before[i]);
            }
        }
        // Half typed, the entry is not a server yet, and the list says so.
        if (typed.endsWith(u"8081")) {
            for (int i = 0; i < 4; ++i) {
                QTest::keyClick(edit, Qt::Key_Backspace);
            }
            QCOMPARE(servers->currentText(), QStringLiteral("%1: (не задан)").arg(entry));
            QTest::keyClicks(edit, "8081");
        }

        click(dialog, "imgButton0");
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(a.ini().read("CDDBServers", key, 256), typed);
        frmOption again(a.app.ctx);
        QCOMPARE(child<QComboBox>(again, "cmbServer")->currentText(), shown);
    }

    // ---- what OK writes ---------------------------------------------------------------

    void sortBoxesOffEraseTheOrders_data()
    {
        QTest::addColumn<bool>("catalogues");
        QTest::addColumn<bool>("loans");
        QTest::addColumn<QStringList>("erased");
        QTest::newRow("both off") << false << false
                                  << QStringList{"ADCDsorted",     "ADCDsortedDESC", "PCCDsorted",
                                                 "PCCDsortedDESC", "DUEsorted",      "DUEsortedDESC",
                                                 "DUEsortedDisk"};
        QTest::newRow("catalogues off")
            << false << true << QStringList{"ADCDsorted", "ADCDsortedDESC", "PCCDsorted", "PCCDsortedDESC"};
        QTest::newRow("loans off") << true << false
                                   << QStringList{"DUEsorted", "DUEsortedDESC", "DUEsortedDisk"};
        QTest::newRow("both on") << true << true << QStringList{};
    }

    void sortBoxesOffEraseTheOrders()
    {
        QFETCH(bool, catalogues);
        QFETCH(bool, loans);
        QFETCH(QStringList, erased);
        App a;
        a.set("SaveSortedCatalogue", "1");
        a.set("SaveSortedDueList", "1");
        for (const QString& key : kSortKeys) {
            a.ini().write("Sorted", key, "3");
        }
        frmOption dialog(a.app.ctx);
        child<QCheckBox>(dialog, "chSaveSortedCatalogue")->setChecked(catalogues);
        child<QCheckBox>(dialog, "chSaveSortedDueList")->setChecked(loans);
        click(dialog, "imgButton0");
        for (const QString& key : kSortKeys) {
            QCOMPARE(a.sorted(key), erased.contains(key) ? "0" : "3");
        }
        QCOMPARE(a.option("SaveSortedCatalogue"), catalogues ? "1" : "0");
        QCOMPARE(a.option("SaveSortedDueList"), loans ? "1" : "0");
    }

    void cancelWritesNothing()
    {
        App a;
        a.set("ConfirmExit", "1");
        frmOption dialog(a.app.ctx);
        child<QCheckBox>(dialog, "chConfirmExit")->setChecked(false);
        child<QCheckBox>(dialog, "chSaveSortedCatalogue")->setChecked(false);
        click(dialog, "imgButton1");
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        QCOMPARE(a.option("ConfirmExit"), "1");
        QCOMPARE(a.sorted("ADCDsorted"), "");
    }

    void everyKeyRoundTrips()
    {
        App a;
        a.image("a.iso");
        const QString drive = a.image("b.iso");
        const QList<std::pair<QString, QString>> option = {
            {"ConfirmExit", "0"},       {"CheckCD", "0"},
            {"Drive", drive},           {"SaveSortedCatalogue", "1"},
            {"SaveSortedDueList", "1"}, {"AutoCompactDatabase", "1"},
            {"DblClick", "1"},          {"AutoResp", "1"},
            {"FilesAction", "1"},       {"SaveFileListOption", "1"},
            {"DblClickDue", "1"},       {"CheckDueOnStartup", "0"},
            {"ServerCDDB", "3"},        {"ServerTimeout", "45"},
            {"tmrDue", "1200"},         {"tmrCD", "1"},
            {"tmrDueCatalogue", "500"}, {"ColorScheme", "1"}};
        for (const auto& [key, value] : option) {
            a.set(key, value);
        }
        const QString path = a.app.ctx.appFolder();
        a.set("PathLocalDB", path);
        a.ini().write("CDDBServers", "Email", "ich@example.org");
        for (int n = 2; n <= 7; ++n) {
            a.ini().write("CDDBServers", QStringLiteral("Server%1").arg(n),
                          QStringLiteral("host%1:88%1").arg(n));
        }
        const QByteArray before = test::readFile(a.ini().path());

        frmOption dialog(a.app.ctx);
        QCOMPARE(child<QComboBox>(dialog, "cmbDrive")->currentData().toString(), drive);
        QCOMPARE(child<QComboBox>(dialog, "cmbServer")->currentText(), "4: host4:884");
        QVERIFY(child<QRadioButton>(dialog, "optDblClick1")->isChecked());
        QVERIFY(child<QRadioButton>(dialog, "optDblClick5")->isChecked());
        QVERIFY(child<QRadioButton>(dialog, "optDblClick3")->isChecked());
        QVERIFY(child<QRadioButton>(dialog, "optScheme1")->isChecked());
        QCOMPARE(child<QLineEdit>(dialog, "txtPathLocalDB")->text(), path);
        click(dialog, "imgButton0");
        for (const auto& [key, value] : option) {
            QCOMPARE(a.option(key), value);
        }
        QCOMPARE(a.option("PathLocalDB"), path);
        QCOMPARE(test::readFile(a.ini().path()), before);

        // And the other way: every box and pair turned, the first server, defaults of CDDB.
        frmOption again(a.app.ctx);
        for (const char* box :
             {"chConfirmExit", "chCheckCD", "chSaveSortedCatalogue", "chSaveSortedDueList",
              "chAutoCompactDatabase", "chAutoResp", "chSaveFileListOption", "chCheckDueOnStartup"}) {
            auto* check = child<QCheckBox>(again, box);
            check->setChecked(!check->isChecked());
        }
        for (const char* first : {"optDblClick0", "optDblClick4", "optDblClick2", "optScheme0"}) {
            child<QRadioButton>(again, first)->setChecked(true);
        }
        child<QComboBox>(again, "cmbServer")->setCurrentIndex(0);
        auto* drives = child<QComboBox>(again, "cmbDrive");
        drives->setCurrentIndex(drives->findData(a.app.folder.filePath("a.iso")));
        for (int n = 2; n <= 7; ++n) {
            child<QLineEdit>(again, QStringLiteral("txtServer%1").arg(n))->clear();
        }
        child<QLineEdit>(again, "txtEmail")->clear();
        click(again, "imgButton0");
        const QList<std::pair<QString, QString>> turned = {{"ConfirmExit", "1"},
                                                           {"CheckCD", "1"},
                                                           {"SaveSortedCatalogue", "0"},
                                                           {"SaveSortedDueList", "0"},
                                                           {"AutoCompactDatabase", "0"},
                                                           {"DblClick", "0"},
                                                           {"AutoResp", "0"},
                                                           {"FilesAction", "0"},
                                                           {"SaveFileListOption", "0"},
                                                           {"DblClickDue", "0"},
                                                           {"CheckDueOnStartup", "1"},
                                                           {"ServerCDDB", "0"},
                                                           {"Drive", a.app.folder.filePath("a.iso")},
                                                           {"ColorScheme", "0"}};
        for (const auto& [key, value] : turned) {
            QCOMPARE(a.option(key), value);
        }
        QCOMPARE(a.ini().load().keyNames("CDDBServers"), QStringList{});
    }

    // ---- the folder of the databases --------------------------------------------------

    void changingTheFolder_data()
    {
        QTest::addColumn<QString>("folder"); // "new", "existing", "catalogue alone", "missing", "cancel"
        QTest::addColumn<int>("answer");     // the answer to the question, -1 for none
        QTest::addColumn<bool>("changed");
        QTest::addColumn<QStringList>("texts");
        const QString chooser = "Укажите каталог с базой данных vinora.";
        const QString done = "Путь к локальной базе данных успешно изменен!";
        QTest::newRow("with a database") << "existing" << -1 << true << QStringList{chooser, done};
        QTest::newRow("catalogue alone: the lists made")
            << "catalogue alone" << -1 << true << QStringList{chooser, done};
        QTest::newRow("empty, created")
            << "new" << int(Answer::Yes) << true
            << QStringList{chooser, "В каталоге '%1' база данных не обнаружена!\nСоздать новую базу данных?",
                           done};
        QTest::newRow("empty, declined")
            << "new" << int(Answer::No) << false
            << QStringList{chooser, "В каталоге '%1' база данных не обнаружена!\nСоздать новую базу данных?"};
        QTest::newRow("missing")
            << "missing" << -1 << false
            << QStringList{chooser, "Путь не существует! Выберите другое место расположение базы данных!"};
        QTest::newRow("chooser cancelled") << "cancel" << -1 << false << QStringList{chooser};
    }

    void changingTheFolder()
    {
        QFETCH(QString, folder);
        QFETCH(int, answer);
        QFETCH(bool, changed);
        QFETCH(QStringList, texts);
        App a;
        const QString oldMain = a.app.ctx.MainDBPath;
        const QString target = a.app.folder.filePath("другая");
        if (folder != u"missing") {
            QDir().mkpath(target);
        }
        if (folder == u"existing" || folder == u"catalogue alone") {
            test::TestApp other;
            other.ctx.setDatabaseFolder(target);
            Reanimator(other.ctx, 0);
            if (folder == u"catalogue alone") {
                QFile::remove(target + "/vinora_files.db");
                QFile::remove(target + "/vinora_tracks.db");
            }
        }
        a.app.prompter.answerPath(folder == u"cancel" ? QString() : target + u'/');
        if (answer >= 0) {
            a.app.prompter.answer(Answer(answer));
        }
        frmOption dialog(a.app.ctx);
        click(dialog, "cmdPathLocalDB");
        click(dialog, "imgButton1"); // Cancel keeps what the button did
        for (QString& text : texts) {
            text.replace("%1", target);
        }
        QCOMPARE(a.app.prompter.texts(), texts);
        QCOMPARE(a.app.ctx.MainDBPath, changed ? target + "/vinora.db" : oldMain);
        QCOMPARE(a.app.ctx.FilesDBPath,
                 changed ? target + "/vinora_files.db" : a.app.folder.filePath("vinora_files.db"));
        QCOMPARE(a.app.ctx.TracksDBPath,
                 changed ? target + "/vinora_tracks.db" : a.app.folder.filePath("vinora_tracks.db"));
        QCOMPARE(a.option("PathLocalDB"), changed ? target : QString());
        QCOMPARE(child<QLineEdit>(dialog, "txtPathLocalDB")->text(),
                 changed ? target : a.app.ctx.appFolder());
        QCOMPARE(QFileInfo::exists(target + "/vinora_tracks.db"), changed);
        QCOMPARE(QFileInfo::exists(target + "/vinora_files.db"), changed);
    }

    void readOnlyFolderIsRefused_data()
    {
        QTest::addColumn<bool>("withDatabase");
        QTest::addColumn<QString>("message");
        QTest::newRow("new database") << false << "Папка '%1' доступна только для чтения!";
        QTest::newRow("database there")
            << true
            << "Папка '%1' доступна только для чтения! Для локального использования вы "
               "должны иметь полный доступ к папке!";
    }

    void readOnlyFolderIsRefused()
    {
        QFETCH(bool, withDatabase);
        QFETCH(QString, message);
        App a;
        const QString oldMain = a.app.ctx.MainDBPath;
        const QString target = a.app.folder.filePath("только-чтение");
        QDir().mkpath(target);
        if (withDatabase) {
            test::TestApp other;
            other.ctx.setDatabaseFolder(target);
            Reanimator(other.ctx, 0);
        }
        test::ReadOnlyFolder guard(target);
        if (!guard.active()) {
            QSKIP("this machine cannot make a folder read-only");
        }
        a.app.prompter.answerPath(target);
        if (!withDatabase) {
            a.app.prompter.answer(Answer::Yes);
        }
        frmOption dialog(a.app.ctx);
        click(dialog, "cmdPathLocalDB");
        QCOMPARE(a.app.prompter.texts().last(), message.arg(target));
        QCOMPARE(a.app.ctx.MainDBPath, oldMain);
        QCOMPARE(a.app.ctx.FilesDBPath, a.app.folder.filePath("vinora_files.db"));
        QCOMPARE(a.option("PathLocalDB"), QString());
        QCOMPARE(child<QLineEdit>(dialog, "txtPathLocalDB")->text(), a.app.ctx.appFolder());
        QVERIFY(!QFileInfo::exists(target + "/vinora_tracks.db") || withDatabase);
    }

    void aForeignFileIsToldAndThePathsStay()
    {
        App a;
        const QString oldMain = a.app.ctx.MainDBPath;
        const QString target = a.app.folder.filePath("чужая");
        QDir().mkpath(target + "/vinora.db"); // a folder where the database should be
        a.app.prompter.answerPath(target);
        frmOption dialog(a.app.ctx);
        click(dialog, "cmdPathLocalDB");
        QCOMPARE(a.app.ctx.MainDBPath, oldMain);
        QCOMPARE(a.option("PathLocalDB"), QString());
        QVERIFY(!a.app.prompter.texts().contains("Путь к локальной базе данных успешно изменен!"));
        QVERIFY(a.app.prompter.texts().size() >= 2);
    }

    void theFolderStaysWhileAnotherDatabaseIsOnView()
    {
        App a;
        a.app.ctx.ExternalDBOpen = true;
        frmOption dialog(a.app.ctx);
        QVERIFY(!child<QAbstractButton>(dialog, "cmdPathLocalDB")->isEnabled());
        a.app.ctx.ExternalDBOpen = false;
        frmOption local(a.app.ctx);
        QVERIFY(child<QAbstractButton>(local, "cmdPathLocalDB")->isEnabled());
    }

    // ---- disc images -------------------------------------------------------------------

    void imagesAddedAndRemoved()
    {
        App a;
        const QString first = a.image("first.iso");
        const QString second = a.app.folder.filePath("second.cue");
        test::writeFile(second, "FILE");
        frmOption dialog(a.app.ctx);
        auto* images = child<QListWidget>(dialog, "lstImages");
        auto* drives = child<QComboBox>(dialog, "cmbDrive");
        QCOMPARE(images->count(), 1);

        a.app.prompter.answerPath(second);
        click(dialog, "cmdImageAdd");
        QCOMPARE(virtualDrives(a.ini()), (QStringList{first, second}));
        QCOMPARE(images->count(), 2);
        QCOMPARE(drives->currentData().toString(), second);
        QCOMPARE(drives->currentText(), "second.cue");

        a.app.prompter.answerPath(QString()); // cancelled
        click(dialog, "cmdImageAdd");
        QCOMPARE(virtualDrives(a.ini()).size(), 2);

        click(dialog, "cmdImageRemove"); // nothing chosen
        QCOMPARE(a.app.prompter.texts().last(), "Выберите образ диска в списке.");
        images->setCurrentRow(0);
        click(dialog, "cmdImageRemove");
        QCOMPARE(virtualDrives(a.ini()), QStringList{second});
        QCOMPARE(drives->findData(first), -1);
        QCOMPARE(drives->currentData().toString(), second);
    }

    // ---- from the main window ----------------------------------------------------------

    void mainWindowActsAfterOptions()
    {
        App a;
        a.set("ConfirmExit", "0");
        a.image("a.iso");
        const QString second = a.image("b.iso");
        frmMain window(a.app.ctx);
        window.Form_Load();
        QVERIFY(window.action("ID_DB_Option")->isEnabled());
        QVERIFY(window.action("ID_View_Toolbars_Option")->isEnabled());
        QVERIFY(window.driveSelector()->currentData().toString() != second);
        a.app.prompter.handleModal([&](QDialog& shown) {
            auto& options = dynamic_cast<frmOption&>(shown);
            auto* drive = child<QComboBox>(options, "cmbDrive");
            drive->setCurrentIndex(drive->findData(second));
            click(options, "imgButton0");
            return options.result();
        });
        window.runCommand("ID_DB_Option");
        QCOMPARE(a.option("Drive"), second);
        QCOMPARE(window.driveSelector()->currentData().toString(), second);

        // The panel's item opens the same dialog; an image removed there leaves the tool bar.
        const auto* group = window.findChild<QListWidget*>("g3");
        QVERIFY(group->findItems("Параметры", Qt::MatchExactly).value(0)->flags() & Qt::ItemIsEnabled);
        a.app.prompter.handleModal([&](QDialog& shown) {
            auto* images = child<QListWidget>(shown, "lstImages");
            images->setCurrentRow(1);
            click(shown, "cmdImageRemove");
            click(shown, "imgButton1");
            return shown.result();
        });
        window.listBarItemClicked("g3", "Параметры");
        QVERIFY(a.app.prompter.unanswered());
        QCOMPARE(window.driveSelector()->findData(second), -1);
        QCOMPARE(virtualDrives(a.ini()).size(), 1);
    }

    void toolbarDialogHidesShowsAndResets()
    {
        App a;
        frmMain window(a.app.ctx);
        window.Form_Load();
        window.show();
        QToolBar* due = window.toolbar("tbDue");
        QToolBar* db = window.toolbar("tbDB");
        const auto use = [&](frmToolbars& dialog) {
            QCOMPARE(dialog.windowTitle(), "Панели инструментов");
            QVERIFY(dialog.box("Должники")->isChecked());
            dialog.box("Должники")->click();
            QVERIFY(due->isHidden());
            QVERIFY(!window.action("ID_View_Toolbars_Due")->isChecked());
            dialog.box("Должники")->click();
            QVERIFY(!due->isHidden());
            QVERIFY(window.action("ID_View_Toolbars_Due")->isChecked());
            dialog.box("База данных")->click();
            dialog.box("Каталоги")->click();
            QVERIFY(db->isHidden());
            window.addToolBar(Qt::LeftToolBarArea, due);
            click(dialog, "cmdReset");
            for (const char* title : {"Каталоги", "Должники", "База данных"}) {
                QVERIFY2(dialog.box(QString::fromUtf8(title))->isChecked(), title);
            }
        };
        a.app.prompter.handleModal([&](QDialog& shown) {
            auto& dialog = dynamic_cast<frmToolbars&>(shown);
            use(dialog);
            click(dialog, "cmdClose");
            return dialog.result();
        });
        window.runCommand("ID_View_Toolbars_Option");
        QVERIFY(a.app.prompter.unanswered());
        for (const char* bar : {"tbCatalog", "tbDue", "tbDB"}) {
            QVERIFY2(!window.toolbar(QString::fromLatin1(bar))->isHidden(), bar);
            QCOMPARE(window.toolBarArea(window.toolbar(QString::fromLatin1(bar))), Qt::TopToolBarArea);
        }
        QVERIFY(window.action("ID_View_Toolbars_DB")->isChecked());
        QApplication::processEvents();
        QVERIFY(window.toolbar("tbCatalog")->x() < window.toolbar("tbDue")->x());
        QVERIFY(window.toolbar("tbDue")->x() < window.toolbar("tbDB")->x());
    }

    void colourSchemeIsAppliedAtOnceAndCancelGoesBack()
    {
        App a;
        const QColor light = QApplication::palette().color(QPalette::Window);
        frmOption dialog(a.app.ctx);
        child<QRadioButton>(dialog, "optScheme2")->setChecked(true);
        QVERIFY(QApplication::palette().color(QPalette::Window).lightness() < 128);
        click(dialog, "imgButton1");
        QCOMPARE(QApplication::palette().color(QPalette::Window), light);
        QCOMPARE(a.option("ColorScheme"), "");

        frmOption chosen(a.app.ctx);
        child<QRadioButton>(chosen, "optScheme2")->setChecked(true);
        click(chosen, "imgButton0");
        QCOMPARE(a.option("ColorScheme"), "2");
        QVERIFY(QApplication::palette().color(QPalette::Window).lightness() < 128);
        frmOption back(a.app.ctx);
        QVERIFY(child<QRadioButton>(back, "optScheme2")->isChecked());
        child<QRadioButton>(back, "optScheme1")->setChecked(true);
        click(back, "imgButton0");
        QVERIFY(QApplication::palette().color(QPalette::Window).lightness() >= 128);
    }
};

int main(int argc, char* argv[])
{
    // The scheme tests need to know the desktop's choice: light.
    qputenv("VINORA_COLOR_SCHEME", "light");
    QApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    tst_options test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_options.moc"
