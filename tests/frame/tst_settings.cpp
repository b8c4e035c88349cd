#include "frame/Cp1251.h"
#include "frame/IniFile.h"
#include "frame/NumericPrefix.h"
#include "frame/WindowPlacement.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QTemporaryDir>

using namespace vinora;

class tst_settings : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString path() const { return m_dir.filePath("vinora.ini"); }
    IniFile ini() const { return IniFile(path()); }
    void writeText(const QString& text) { test::writeFile(path(), cp1251::encode(text)); }

private slots:
    void init() { QFile::remove(path()); }

    void read_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("buffer");
        QTest::addColumn<QString>("expected");

        const QString option =
            QStringLiteral("[Option]\r\nConfirmExit=1\r\nPathLocalDB=/data/Мои диски\r\n"
                           "Empty=\r\n  Spaced =  value with = sign  \r\nQuoted=\"a b\"\r\n");
        const auto row = [](const char* tag, const QString& file, const QString& section, const QString& key,
                            int buffer, const QString& expected) {
            QTest::newRow(tag) << file << section << key << buffer << expected;
        };
        row("exact", option, "Option", "ConfirmExit", 5, "1");
        row("section and key ignore case", option, "OPTION", "confirmexit", 5, "1");
        row("Cyrillic value", option, "Option", "PathLocalDB", 255, "/data/Мои диски");
        row("buffer cuts the value", option, "Option", "PathLocalDB", 5, "/dat");
        row("buffer of 2 keeps one character", "[Option]\nCheckCD=10\n", "Option", "CheckCD", 2, "1");
        row("empty value reads as nothing", option, "Option", "Empty", 5, "");
        row("missing key reads as nothing", option, "Option", "Drive", 5, "");
        row("missing section", option, "Window", "State", 15, "");
        row("blanks trimmed, later = kept", option, "Option", "Spaced", 255, "value with = sign");
        row("quotes stripped", option, "Option", "Quoted", 255, "a b");
        row("first of two sections", "[A]\nk=1\n[a]\nk=2\n", "a", "k", 5, "1");
        row("key of another section not seen", "[A]\nk=1\n[B]\n", "B", "k", 5, "");
        row("Cyrillic section ignores case", "[Мой Запрос]\nCategory=AD\n", "мой запрос", "category", 55,
            "AD");
        row("garbage around", "\x01\x02 trash\n=x\n[Option\nConfirmExit=0\n", "Option", "ConfirmExit", 5,
            "0");
    }

    void read()
    {
        QFETCH(QString, file);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(int, buffer);
        writeText(file);
        QTEST(ini().read(section, key, buffer), "expected");
    }

    void missingOrBinaryFileReadsAsEmpty()
    {
        QCOMPARE(ini().read("Option", "ConfirmExit", 5), QString());
        QByteArray garbage;
        for (int i = 0; i < 4096; ++i) {
            garbage.append(static_cast<char>((i * 7919) % 256));
        }
        test::writeFile(path(), garbage);
        QCOMPARE(ini().read("Option", "ConfirmExit", 5), QString());
        ini().write("Option", "ConfirmExit", "0");
        QCOMPARE(ini().read("Option", "ConfirmExit", 5), "0");
    }

    void writeKeepsFileInCodePage1251()
    {
        ini().write("Option", "PathLocalDB", "/home/Пётр");
        const QByteArray bytes = test::readFile(path());
        QVERIFY(bytes.contains("PathLocalDB=/home/\xCF\xB8\xF2\xF0"));
        QCOMPARE(ini().read("option", "pathlocaldb", 255), "/home/Пётр");
    }

    void writeReplacesInsertsAndRemoves()
    {
        writeText("[Option]\nconfirmexit=1\n\n[Window]\nState=0\n");
        ini().write("Option", "ConfirmExit", "0");
        ini().write("Option", "Drive", "/dev/sr0");
        ini().write("Sorted", "ADCDsorted", "2");
        QCOMPARE(
            cp1251::decode(test::readFile(path())),
            QStringLiteral(
                "[Option]\nConfirmExit=0\nDrive=/dev/sr0\n\n[Window]\nState=0\n[Sorted]\nADCDsorted=2\n"));

        ini().removeKey("option", "drive");
        ini().removeSection("WINDOW");
        QCOMPARE(cp1251::decode(test::readFile(path())),
                 "[Option]\nConfirmExit=0\n\n[Sorted]\nADCDsorted=2\n");
    }

    void numericPrefix_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::newRow("plain") << "2500" << 2500.0;
        QTest::newRow("prefix") << "12abc" << 12.0;
        QTest::newRow("not a number") << "abc" << 0.0;
        QTest::newRow("empty") << "" << 0.0;
        QTest::newRow("blanks inside") << " 1 5" << 15.0;
        QTest::newRow("negative decimal") << "-2.5" << -2.5;
        QTest::newRow("exponent") << "1.5e2x" << 150.0;
        QTest::newRow("dangling exponent") << "7e" << 7.0;
        QTest::newRow("comma stops") << "3,5" << 3.0;
        QTest::newRow("hex") << "&H1F" << 31.0;
        QTest::newRow("twips") << "1530.5" << 1530.5;
    }

    void numericPrefix()
    {
        QFETCH(QString, text);
        QTEST(vinora::numericPrefix(text), "value");
    }

    void windowPlacementKeepsLastNormalPosition()
    {
        SaveWinPos(ini(), 0, 1500, 750, 7200, 9600);
        SaveWinPos(ini(), 2, 0, 0, 100, 100);
        const WindowPlacement placement = LoadWinPos(ini());
        QCOMPARE(placement.state, std::optional<int>(2));
        QCOMPARE(placement.left, std::optional<double>(1500));
        QCOMPARE(placement.top, std::optional<double>(750));
        QCOMPARE(placement.height, std::optional<double>(7200));
        QCOMPARE(placement.width, std::optional<double>(9600));
    }

    void windowPlacementMissingKeysStayEmpty()
    {
        writeText("[Window]\nLeft=12abc\nWidth=\n");
        const WindowPlacement placement = LoadWinPos(ini());
        QVERIFY(!placement.state);
        QCOMPARE(placement.left, std::optional<double>(12));
        QVERIFY(!placement.top);
        QVERIFY(!placement.width);
    }
};

VINORA_TEST_MAIN(tst_settings)
#include "tst_settings.moc"
