// The main window's settings files: the query shortcuts of query.ini, the window's place,
// the images registered as drives, and leaving when vinora.ini cannot be written.
#include "frame/AppError.h"
#include "frame/Cp1251.h"
#include "frame/IniFile.h"
#include "mainwindow/frmMain.h"
#include "recognition/Drives.h"
#include "search/QueryShortcuts.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QScreen>
#include <cerrno>

using namespace vinora;

namespace {

// Shortcuts 1..n named Запрос1.., each with its Num and Category.
QString shortcutsFile(int count, int listed)
{
    QString text = "[Query]\nCount=" + QString::number(count) + u'\n';
    for (int n = 1; n <= listed; ++n) {
        text += QStringLiteral("[%1]\nName=Запрос%1\n").arg(n);
    }
    for (int n = 1; n <= listed; ++n) {
        text += QStringLiteral("[Запрос%1]\nNum=%1\nCategory=AD\nQuery1=And Номер = %1\n").arg(n);
    }
    return text;
}

} // namespace

class tst_mainsettings : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString path() const { return m_dir.filePath("query.ini"); }
    IniFile queryIni() const { return IniFile(path()); }
    void writeText(const QString& text) { test::writeFile(path(), cp1251::encode(text)); }

private slots:
    void init()
    {
        QFile::remove(path());
        IniFile::failWriteForTests(0, 0);
    }
    void cleanup() { IniFile::failWriteForTests(0, 0); }

    // ---- counts are bounded by what the file holds --------------------------------------------

    void loadingListsWhatTheFileHolds_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QStringList>("names");
        QTest::newRow("as written") << shortcutsFile(3, 3) << QStringList{"Запрос1", "Запрос2", "Запрос3"};
        QTest::newRow("Count far beyond")
            << shortcutsFile(9999, 3) << QStringList{"Запрос1", "Запрос2", "Запрос3"};
        QTest::newRow("Count beyond int")
            << shortcutsFile(1, 0).replace("Count=1", "Count=1e300") + "[1]\nName=Один\n[2]\nName=Два\n"
            << QStringList{"Один", "Два"};
        QTest::newRow("Count below the list") << shortcutsFile(2, 3) << QStringList{"Запрос1", "Запрос2"};
        QTest::newRow("negative Count") << shortcutsFile(-5, 3) << QStringList{};
        QTest::newRow("gap in the numbers")
            << "[Query]\nCount=5\n[5]\nName=Пять\n[2]\nName=Два\n[02]\nName=Нет\n"
            << QStringList{"Два", "Пять"};
        QTest::newRow("no Count") << "[1]\nName=Один\n" << QStringList{};
    }

    void loadingListsWhatTheFileHolds()
    {
        QFETCH(QString, file);
        writeText(file);
        QTEST(shortcutNames(queryIni()), "names");
    }

    void deletingUnderAHugeCountStaysSmall()
    {
        writeText(shortcutsFile(9999, 3));
        const qint64 before = test::readFile(path()).size();
        QVERIFY(deleteShortcut(queryIni(), "Запрос1"));
        const IniDocument doc = queryIni().load();
        QCOMPARE(shortcutNames(queryIni()), (QStringList{"Запрос2", "Запрос3"}));
        QCOMPARE(doc.read("Query", "Count", 55), "9998");
        QCOMPARE(doc.read("Запрос2", "Num", 55), "1");
        QCOMPARE(doc.read("Запрос3", "Num", 55), "2");
        // Query, 1, 2 and the two names: no empty sections up to the claimed count.
        QCOMPARE(doc.sectionNames().size(), 5);
        QVERIFY(test::readFile(path()).size() < before);
    }

    void deletingRenumbers_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QString>("count");
        const auto row = [](const char* tag, const QString& file, const QString& name,
                            const QStringList& names) { QTest::newRow(tag) << file << name << names << "2"; };
        const QString three = shortcutsFile(3, 3);
        const QStringList firstAndLast{"Запрос1", "Запрос3"};
        row("first of three", three, "Запрос1", {"Запрос2", "Запрос3"});
        row("middle of three", three, "Запрос2", firstAndLast);
        row("last of three", three, "Запрос3", {"Запрос1", "Запрос2"});
        row("Num missing: found by its place", QString(three).replace("Num=2\n", ""), "Запрос2",
            firstAndLast);
        row("Num pointing elsewhere", QString(three).replace("Num=2\n", "Num=1\n"), "Запрос2", firstAndLast);
        row("Num beyond int", QString(three).replace("Num=2\n", "Num=1e300\n"), "Запрос2", firstAndLast);
        row("not in the list: its section goes, the list stays",
            shortcutsFile(2, 2) + "[Чужой]\nNum=1\nCategory=PC\n", "Чужой", {"Запрос1", "Запрос2"});
    }

    void deletingRenumbers()
    {
        QFETCH(QString, file);
        QFETCH(QString, name);
        QFETCH(QStringList, names);
        writeText(file);
        QVERIFY(deleteShortcut(queryIni(), name));
        QCOMPARE(shortcutNames(queryIni()), names);
        const IniDocument doc = queryIni().load();
        QTEST(doc.read("Query", "Count", 55), "count");
        QVERIFY(!doc.hasSection(name));
        for (int n = 0; n < names.size(); ++n) {
            QCOMPARE(doc.read(names[n], "Num", 55), QString::number(n + 1));
            QCOMPARE(doc.read(names[n], "Category", 55).isEmpty(), false);
        }
        QVERIFY(!doc.hasSection(QString())); // no section of an empty name
    }

    void deletingWithoutCountRefuses()
    {
        writeText("[1]\nName=Один\n[Один]\nNum=1\n");
        const QByteArray before = test::readFile(path());
        QVERIFY(!deleteShortcut(queryIni(), "Один"));
        QCOMPARE(test::readFile(path()), before);
    }

    void failedDeleteKeepsTheFile()
    {
        writeText(shortcutsFile(3, 3));
        const QByteArray before = test::readFile(path());
        IniFile::failWriteForTests(1, ENOSPC);
        QVERIFY_THROWS_EXCEPTION(AppError, deleteShortcut(queryIni(), "Запрос1"));
        QCOMPARE(test::readFile(path()), before);
        QCOMPARE(shortcutNames(queryIni()).size(), 3);
    }

    void shortcutOfAnyNameRoundTrips_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("Cyrillic") << "Мой рок";
        QTest::newRow("Japanese") << "日本のアニメ";
        QTest::newRow("emoji") << "🎵 музыка";
        QTest::newRow("percent") << "100% рок";
    }

    void shortcutOfAnyNameRoundTrips()
    {
        QFETCH(QString, name);
        // Written the way the query dialog writes a new shortcut.
        const IniFile ini = queryIni();
        ini.write("Query", "Count", "2");
        ini.write("1", "Name", "Первый");
        ini.write("Первый", "Num", "1");
        ini.write("Первый", "Category", "PC");
        ini.write("2", "Name", name);
        ini.write(name, "Num", "2");
        ini.write(name, "Category", "AD");
        ini.write(name, "Query1", "And Название LIKE '*" + name + "*'");
        QCOMPARE(shortcutNames(ini), (QStringList{"Первый", name}));
        const auto query = shortcutQuery(ini, name);
        QVERIFY(query.has_value());
        QCOMPARE(query->category, "AD");
        QCOMPARE(query->condition, "And Название LIKE '*" + name + "*'");
        QVERIFY(deleteShortcut(ini, name));
        QCOMPARE(shortcutNames(ini), QStringList{"Первый"});
        QVERIFY(!shortcutQuery(ini, name));
    }

    // ---- images whose names the code page cannot hold ---------------------------------------

    void imageOfAnyNameIsRegisteredAndRemoved()
    {
        const IniFile ini(m_dir.filePath("vinora.ini"));
        QFile::remove(ini.path());
        const QStringList images{"/media/日本語.iso", "/media/диск.iso", "/media/🎵.iso", "/media/100%.iso"};
        for (const QString& image : images) {
            QVERIFY(addVirtualDrive(ini, image));
        }
        QCOMPARE(virtualDrives(ini), images);
        setChosenDrive(ini, images[0]);
        QCOMPARE(chosenDrive(ini, virtualDrives(ini)), images[0]);
        QVERIFY(removeVirtualDrive(ini, images[0]));
        QCOMPARE(virtualDrives(ini), images.mid(1));
        // The old program's own values stay as they were written.
        QVERIFY(test::readFile(ini.path()).contains("Image1=/media/\xE4\xE8\xF1\xEA.iso\n"));
    }

    // ---- the window ------------------------------------------------------------------------

    void windowStaysOnTheScreen_data()
    {
        QTest::addColumn<QString>("size");
        QTest::addColumn<QString>("place");
        QTest::newRow("huge") << QString("99999999999999") << "99999999999999";
        QTest::newRow("negative") << QString("-99999999999999") << "-99999999999999";
        QTest::newRow("beyond double") << QString("1e999") << "-1e999";
    }

    void windowStaysOnTheScreen()
    {
        QFETCH(QString, size);
        QFETCH(QString, place);
        test::TestApp app;
        Reanimator(app.ctx, 0);
        for (const char* key : {"Height", "Width"}) {
            app.ctx.ini().write("Window", QString::fromLatin1(key), size);
        }
        for (const char* key : {"Left", "Top"}) {
            app.ctx.ini().write("Window", QString::fromLatin1(key), place);
        }
        app.ctx.ini().write("Window", "State", size);
        frmMain window(app.ctx);
        window.Form_Load();
        QVERIFY(window.screen() != nullptr);
        const QRect available = window.screen()->availableGeometry();
        QVERIFY2(available.contains(QRect(window.pos(), window.size())),
                 qPrintable(QStringLiteral("%1,%2 %3x%4")
                                .arg(window.x())
                                .arg(window.y())
                                .arg(window.width())
                                .arg(window.height())));
        QVERIFY(window.width() > 0 && window.height() > 0);
    }

    void exitGoesOnWhenThePlaceCannotBeSaved()
    {
        test::TestApp app;
        Reanimator(app.ctx, 0);
        app.ctx.ini().write("Option", "ConfirmExit", "0");
        const QByteArray before = test::readFile(app.ctx.IniFilePath);
        frmMain window(app.ctx);
        window.Form_Load();
        window.move(40, 30);
        IniFile::failWriteForTests(1, ENOSPC);
        QVERIFY(window.Form_Unload()); // the program still ends
        QCOMPARE(app.prompter.texts().size(), 1);
        QVERIFY2(app.prompter.texts().first().contains("на диске нет свободного места"),
                 qPrintable(app.prompter.texts().first()));
        QVERIFY(app.prompter.texts().first().contains(QDir::toNativeSeparators(app.ctx.IniFilePath)));
        QCOMPARE(test::readFile(app.ctx.IniFilePath), before);
    }
};

VINORA_TEST_MAIN(tst_mainsettings)
#include "tst_mainsettings.moc"
