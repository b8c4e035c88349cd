#include "frame/AppError.h"
#include "frame/Cp1251.h"
#include "frame/IniFile.h"
#include "frame/WindowPlacement.h"
#include "support/DataRows.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <cerrno>
#include <sys/mount.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace vinora;

namespace {

const QString kMarker = IniDocument::kEncodedMarker;

// What a change of the file did: the error it threw, if any.
std::optional<AppError> failureOf(const std::function<void()>& change)
{
    try {
        change();
    } catch (const AppError& error) {
        return error;
    }
    return std::nullopt;
}

// A settings file of some size with lines of every kind the old program and users leave.
QByteArray oldSettings()
{
    QByteArray bytes = "[Option]\r\nConfirmExit=0\r\nPathLocalDB=/data/\xCC\xEE\xE8 \xE4\xE8\xF1\xEA\xE8\r\n"
                       "Odd=\x98\x81\xFF\x01 kept\r\n\r\n[Window]\r\nState=0\r\nLeft=1500\r\n";
    for (int i = 1; i <= 400; ++i) {
        bytes += "[" + QByteArray::number(i) + "]\r\nName=\xC7\xE0\xEF\xF0\xEE\xF1" + QByteArray::number(i) +
                 "\r\n";
    }
    return bytes;
}

QStringList leftovers(const QString& folder)
{
    // Only the settings file and its lock file may stand there.
    QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    names.removeAll("vinora.ini");
    names.removeAll(".vinora.ini.lock");
    return names;
}

} // namespace

class tst_settingsfile : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString path() const { return m_dir.filePath("vinora.ini"); }
    IniFile ini() const { return IniFile(path()); }

private slots:
    void init()
    {
        QFile::remove(path());
        IniFile::failWriteForTests(0, 0);
    }
    void cleanup() { IniFile::failWriteForTests(0, 0); }

    // ---- a write that fails changes nothing and says so --------------------------------------

    void failedWriteKeepsTheOldFile_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<int>("nthWrite");
        QTest::addColumn<int>("error");
        QTest::addColumn<QString>("reason");
        const QString full = "на диске нет свободного места";
        QTest::newRow("write, first block") << "write" << 1 << ENOSPC << full;
        QTest::newRow("write, after a block went out") << "write" << 2 << ENOSPC << full;
        QTest::newRow("write, quota") << "write" << 1 << EDQUOT << QString("превышена дисковая квота");
        QTest::newRow("write, device error") << "write" << 2 << EIO << QString("ошибка ввода-вывода");
        QTest::newRow("removeKey") << "removeKey" << 1 << ENOSPC << full;
        QTest::newRow("removeSection") << "removeSection" << 2 << ENOSPC << full;
        QTest::newRow("window place") << "SaveWinPos" << 1 << ENOSPC << full;
    }

    void failedWriteKeepsTheOldFile()
    {
        QFETCH(QString, change);
        QFETCH(int, nthWrite);
        QFETCH(int, error);
        QFETCH(QString, reason);
        const QByteArray old = oldSettings();
        test::writeFile(path(), old);
        IniFile::failWriteForTests(nthWrite, error);
        const auto failure = failureOf([&] {
            if (change == u"write") {
                ini().write("Toolbars", "LastAction", "2");
            } else if (change == u"removeKey") {
                ini().removeKey("Option", "ConfirmExit");
            } else if (change == u"removeSection") {
                ini().removeSection("Window");
            } else {
                SaveWinPos(ini(), 0, 300, 450, 7200, 9600);
            }
        });
        QVERIFY(failure.has_value());
        QCOMPARE(failure->number(), err::PathFileAccess);
        QVERIFY2(failure->description().contains(QDir::toNativeSeparators(path())),
                 qPrintable(failure->description()));
        QVERIFY2(failure->description().contains(reason), qPrintable(failure->description()));
        QCOMPARE(test::readFile(path()), old);
        QCOMPARE(leftovers(m_dir.path()), QStringList());

        // The next write, with room again, goes through.
        ini().write("Toolbars", "LastAction", "2");
        QCOMPARE(ini().read("Toolbars", "LastAction", 5), "2");
        QCOMPARE(ini().read("400", "Name", 55), "Запрос400");
    }

    void fullDiskKeepsTheOldFile()
    {
        // A real full file system: a small tmpfs of our own, where we may make one.
        QTemporaryDir mountPoint;
        const QByteArray where = QFile::encodeName(mountPoint.path());
        if (::geteuid() != 0 || ::mount("tmpfs", where.constData(), "tmpfs", 0, "size=64k") != 0) {
            QSKIP("no tmpfs of our own here (needs root and mount); the injected fault above covers the same "
                  "path");
        }
        const auto unmount = qScopeGuard([&] { ::umount2(where.constData(), MNT_DETACH); });
        const QString settings = QDir(mountPoint.path()).filePath("vinora.ini");
        const QByteArray old = oldSettings();
        test::writeFile(settings, old);
        QCOMPARE(test::readFile(settings), old);
        // Fill what is left, so the new copy of the file cannot be written whole.
        {
            QFile filler(QDir(mountPoint.path()).filePath("filler"));
            QVERIFY(filler.open(QIODevice::WriteOnly));
            const QByteArray block(1024, 'x');
            while (filler.write(block) == block.size() && filler.flush()) {
            }
        }
        const IniFile file(settings);
        for (int attempt = 0; attempt < 3; ++attempt) {
            const auto failure = failureOf([&] { file.write("VirtualDrives", "Image1", "/x.iso"); });
            QVERIFY(failure.has_value());
            QCOMPARE(failure->number(), err::PathFileAccess);
            QVERIFY2(failure->description().contains("на диске нет свободного места"),
                     qPrintable(failure->description()));
            QCOMPARE(test::readFile(settings), old);
        }
    }

    void readOnlyFolderRefusesAndKeeps()
    {
        QTemporaryDir folder;
        const QString settings = QDir(folder.path()).filePath("vinora.ini");
        test::writeFile(settings, "[Option]\nConfirmExit=0\n");
        test::ReadOnlyFolder readOnly(folder.path());
        if (!readOnly.active()) {
            QSKIP("this machine cannot make a folder read-only");
        }
        const auto failure = failureOf([&] { IniFile(settings).write("Option", "Drive", "x"); });
        QVERIFY(failure.has_value());
        QCOMPARE(failure->number(), err::PathFileAccess);
        QCOMPARE(test::readFile(settings), QByteArray("[Option]\nConfirmExit=0\n"));
    }

    void unchangedWriteDoesNotTouchTheFile()
    {
        test::writeFile(path(), "[Option]\nConfirmExit=0\n");
        const quint64 inode = test::inodeOf(path());
        IniFile::failWriteForTests(1, ENOSPC); // would throw if anything were written
        ini().write("Option", "ConfirmExit", "0");
        ini().removeKey("Option", "Missing");
        ini().removeSection("Missing");
        QCOMPARE(test::inodeOf(path()), inode);
    }

    // ---- two writers at once ------------------------------------------------------------------

    void concurrentWritersLoseNoKey()
    {
        constexpr int kEach = 120;
        const auto writer = [this](const QString& prefix) {
            for (int i = 0; i < kEach; ++i) {
                ini().write("Shared", prefix + QString::number(i), QString::number(i));
            }
        };
        // The other writer is a process of its own, as vinora-cli beside the window.
        const pid_t child = ::fork();
        QVERIFY(child >= 0);
        if (child == 0) {
            try {
                writer("cli");
            } catch (...) {
                ::_exit(2);
            }
            ::_exit(0);
        }
        std::thread second([&] { writer("thread"); });
        writer("window");
        second.join();
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        const IniDocument doc = ini().load();
        for (const char* prefix : {"cli", "thread", "window"}) {
            for (int i = 0; i < kEach; ++i) {
                QCOMPARE(doc.read("Shared", QString::fromLatin1(prefix) + QString::number(i), 10),
                         QString::number(i));
            }
        }
    }

    // ---- what any value and name become in the file -----------------------------------------

    void valueRoundTrip_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("line"); // the bytes written; empty: the encoded form

        QTest::newRow("Latin path") << "/dev/sr0" << QByteArray("Image1=/dev/sr0");
        QTest::newRow("Cyrillic") << "/home/Пётр/диск.iso"
                                  << QByteArray("Image1=/home/\xCF\xB8\xF2\xF0/\xE4\xE8\xF1\xEA.iso");
        QTest::newRow("quotes and signs of the code page")
            << "«№ 5» — €" << QByteArray("Image1=\xAB\xB9 5\xBB \x97 \x88");
        QTest::newRow("percent in a path") << "/tmp/100%.iso" << QByteArray("Image1=/tmp/100%.iso");
        QTest::newRow("equals sign inside") << "a=b" << QByteArray("Image1=a=b");
        QTest::newRow("empty") << "" << QByteArray("Image1=");
        QTest::newRow("byte 0x98 of the code page") << QString(QChar(0x98)) << QByteArray("Image1=\x98");
        QTest::newRow("Japanese") << "/media/日本語.iso" << QByteArray();
        QTest::newRow("emoji") << "/media/🎵 music.iso" << QByteArray();
        QTest::newRow("Latin accents outside the code page") << "Café" << QByteArray();
        QTest::newRow("replacement character") << QString(QChar(0xFFFD)) << QByteArray();
        QTest::newRow("marker as literal text") << kMarker + "abc" << QByteArray();
        QTest::newRow("marker with what decodes") << kMarker + "%41" << QByteArray();
        QTest::newRow("marker alone") << kMarker << QByteArray();
        QTest::newRow("marker later in the text") << "x" + kMarker << QByteArray("Image1=x%UTF8%");
        QTest::newRow("leading and trailing blanks") << "  padded  " << QByteArray();
        QTest::newRow("enclosing quotes") << "\"quoted\"" << QByteArray();
        QTest::newRow("line break") << "one\n[Option]\nPathLocalDB=/evil" << QByteArray();
        QTest::newRow("carriage return") << "a\rb" << QByteArray();
    }

    void valueRoundTrip()
    {
        QFETCH(QString, value);
        QFETCH(QByteArray, line);
        test::writeFile(path(), "[VirtualDrives]\nImage0=keep\n[Option]\nDrive=/dev/sr0\n");
        ini().write("VirtualDrives", "Image1", value);
        QCOMPARE(ini().read("VirtualDrives", "Image1", 4096), value);
        const QList<QByteArray> lines = test::readFile(path()).split('\n');
        QCOMPARE(lines.size(), 6);
        if (line.isEmpty()) {
            QVERIFY2(lines[2].startsWith(QByteArray(QByteArray("Image1=") + kMarker.toLatin1())),
                     lines[2].constData());
            for (const char c : lines[2]) {
                QVERIFY2(c > ' ' && c < 0x7F, lines[2].constData()); // one plain line of ASCII
            }
        } else {
            QCOMPARE(lines[2], line);
        }
        // Everything else reads as before.
        QCOMPARE(ini().read("VirtualDrives", "Image0", 255), "keep");
        QCOMPARE(ini().read("Option", "Drive", 255), "/dev/sr0");
        QCOMPARE(ini().read("Option", "PathLocalDB", 255), QString());
    }

    void namesRoundTrip_data()
    {
        test::addColumns<QString>({"section", "key"});
        const auto row = test::addRow<QString, QString>;
        row("Cyrillic shortcut name", "Мой запрос", "Category");
        row("Japanese shortcut name", "日本のアニメ", "Category");
        row("emoji key", "Sec", "ключ🎵");
        row("bracket in section", "a]b", "k");
        row("equals sign in key", "Sec", "a=b");
        row("key that looks like a section", "Sec", "[Option]");
        row("marker in section", kMarker + "x", "k");
    }

    void namesRoundTrip()
    {
        QFETCH(QString, section);
        QFETCH(QString, key);
        ini().write(section, key, "value");
        ini().write("Other", "k", "other");
        QCOMPARE(ini().read(section, key, 255), "value");
        QVERIFY(ini().load().sectionNames().contains(section));
        QCOMPARE(ini().read("Other", "k", 255), "other");
        ini().write(section, key, "changed");
        QCOMPARE(ini().read(section, key, 255), "changed");
        QCOMPARE(ini().load().sectionNames().count(section), 1);
        ini().removeSection(section);
        QCOMPARE(ini().read(section, key, 255), QString());
    }

    void encodedFormThatDoesNotDecodeReadsAsText_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QString>("expected");
        QTest::newRow("our form") << QByteArray("%UTF8%%E6%97%A5") << "日";
        QTest::newRow("bad percent") << QByteArray("%UTF8%%G1") << "%UTF8%%G1";
        QTest::newRow("cut percent") << QByteArray("%UTF8%%E") << "%UTF8%%E";
        QTest::newRow("not UTF-8") << QByteArray("%UTF8%%FF") << "%UTF8%%FF";
        QTest::newRow("other case is plain text") << QByteArray("%utf8%%41") << "%utf8%%41";
    }

    void encodedFormThatDoesNotDecodeReadsAsText()
    {
        QFETCH(QByteArray, stored);
        test::writeFile(path(), "[S]\nk=" + stored + "\n");
        QTEST(ini().read("S", "k", 255), "expected");
    }

    // ---- lines we did not write stay as they were ----------------------------------------------

    void untouchedLinesKeepTheirBytes_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after"); // after writing Option/Drive=/dev/sr1

        QTest::newRow("byte 0x98 and other odd bytes")
            << QByteArray("[Option]\nDrive=/dev/sr0\nOdd=\x98\x81\xFF\x7F!\n[Sorted]\nADCDsorted=2\n")
            << QByteArray("[Option]\nDrive=/dev/sr1\nOdd=\x98\x81\xFF\x7F!\n[Sorted]\nADCDsorted=2\n");
        QTest::newRow("NUL byte in another line")
            << QByteArray("[Option]\nZero=a") + '\0' + "b\n"
            << QByteArray("[Option]\nZero=a") + '\0' + "b\nDrive=/dev/sr1\n";
        QTest::newRow("UTF-8 written by another program")
            << QByteArray("[Option]\nNote=Пётр\n") << QByteArray("[Option]\nNote=Пётр\nDrive=/dev/sr1\n");
        QTest::newRow("CRLF kept, new lines too")
            << QByteArray("[Window]\r\nState=0\r\n\r\n[Option]\r\nDrive=/dev/sr0\r\n")
            << QByteArray("[Window]\r\nState=0\r\n\r\n[Option]\r\nDrive=/dev/sr1\r\n");
        QTest::newRow("CRLF file, new section")
            << QByteArray("[Window]\r\nState=0\r\n")
            << QByteArray("[Window]\r\nState=0\r\n[Option]\r\nDrive=/dev/sr1\r\n");
        QTest::newRow("mixed line ends kept")
            << QByteArray("[Window]\r\nState=0\nLeft=1\r[Option]\nDrive=x\n")
            << QByteArray("[Window]\r\nState=0\nLeft=1\r[Option]\nDrive=/dev/sr1\n");
        QTest::newRow("no end on the last line")
            << QByteArray("[Window]\nState=0") << QByteArray("[Window]\nState=0\n[Option]\nDrive=/dev/sr1\n");
        QTest::newRow("changed last line keeps having no end")
            << QByteArray("[Option]\nDrive=x") << QByteArray("[Option]\nDrive=/dev/sr1");
        QTest::newRow("blank lines and comments kept")
            << QByteArray("; my settings\n\n[Option]\n  ; note \nDrive = x \n\n\n[Sorted]\n")
            << QByteArray("; my settings\n\n[Option]\n  ; note \nDrive=/dev/sr1\n\n\n[Sorted]\n");
        QTest::newRow("blank separator stays below a new key")
            << QByteArray("[Option]\nConfirmExit=0\n\n[Sorted]\n")
            << QByteArray("[Option]\nConfirmExit=0\nDrive=/dev/sr1\n\n[Sorted]\n");
        QTest::newRow("binary junk before any section")
            << QByteArray("\xFE\xFF\x98junk\n[Option]\n")
            << QByteArray("\xFE\xFF\x98junk\n[Option]\nDrive=/dev/sr1\n");
    }

    void untouchedLinesKeepTheirBytes()
    {
        QFETCH(QByteArray, before);
        test::writeFile(path(), before);
        ini().write("Option", "Drive", "/dev/sr1");
        QTEST(test::readFile(path()), "after");
    }

    void valueWithOddByteSurvivesItsOwnRewrite()
    {
        // Read and written back by a screen, as the options dialog does with every key.
        test::writeFile(path(), "[Option]\nPathLocalDB=/data/\x98\xC0\n");
        const QString value = ini().read("Option", "PathLocalDB", 255);
        ini().write("Option", "PathLocalDB", value + "/x");
        QCOMPARE(test::readFile(path()), QByteArray("[Option]\nPathLocalDB=/data/\x98\xC0/x\n"));
    }

    void everyByteSurvivesTheCodePage()
    {
        QByteArray all;
        for (int b = 0; b < 256; ++b) {
            all.append(static_cast<char>(b));
        }
        QCOMPARE(cp1251::encode(cp1251::decode(all)), all);
        QVERIFY(cp1251::canEncode(cp1251::decode(all)));
        QVERIFY(!cp1251::canEncode(QStringLiteral("日")));
    }

    // ---- the window's place from any text --------------------------------------------------

    void windowPlacementFromAnyText_data()
    {
        test::addColumns<QString>({"height", "width", "left", "top"});
        QTest::addColumn<QRect>("expected");
        const QRect designed(100, 80, 640, 480);
        const auto row = test::addRow<QString, QString, QString, QString, QRect>;
        row("as stored", "6000", "9000", "1500", "750", QRect(100, 50, 600, 400));
        row("huge size", "99999999999999", "99999999999999", "0", "0", QRect(0, 0, 1920, 1040));
        row("beyond double", "1e999", "-1e999", "1e999", "-1e999", designed);
        row("largest double", "1.7e308", "1.7e308", "-1.7e308", "1.7e308", QRect(0, 0, 1920, 1040));
        row("negative size", "-4500", "0", "1500", "750", QRect(100, 50, 640, 480));
        row("off to the right and down", "6000", "9000", "90000", "90000", QRect(1320, 640, 600, 400));
        row("off to the left and up", "6000", "9000", "-90000", "-90000", QRect(0, 0, 600, 400));
        row("hex and garbage", "&HFFFFFFFF", "abc", "&H7FFFFFFF", "nan", QRect(1280, 0, 640, 480));
        row("missing keys leave the design", "", "", "", "", designed);
    }

    void windowPlacementFromAnyText()
    {
        QFETCH(QString, height);
        QFETCH(QString, width);
        QFETCH(QString, left);
        QFETCH(QString, top);
        test::writeFile(
            path(), cp1251::encode(QString("[Window]\nState=99999999999999\nHeight=" + height +
                                           "\nWidth=" + width + "\nLeft=" + left + "\nTop=" + top + "\n")));
        const WindowPlacement placement = LoadWinPos(ini());
        QCOMPARE(placedState(placement), 0);
        const QRect available(0, 0, 1920, 1040);
        const QRect placed = placedGeometry(placement, QRect(100, 80, 640, 480), available);
        QTEST(placed, "expected");
        QVERIFY(available.contains(placed));
        // Without a screen only the sanity bounds hold, still without overflow.
        const QRect free = placedGeometry(placement, QRect(100, 80, 640, 480), QRect());
        QVERIFY(free.width() > 0 && free.height() > 0);
        for (const int edge : {free.left(), free.top(), free.width(), free.height()}) {
            QVERIFY(qAbs(edge) <= 1 << 20);
        }
    }

    void windowStateFromAnyText_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("state");
        QTest::newRow("normal") << "0" << 0;
        QTest::newRow("minimised") << "1" << 1;
        QTest::newRow("maximised") << "2" << 2;
        QTest::newRow("unknown") << "7" << 0;
        QTest::newRow("huge") << "1e300" << 0;
        QTest::newRow("negative huge") << "-99999999999999" << 0;
        QTest::newRow("fraction") << "2.9" << 2;
    }

    void windowStateFromAnyText()
    {
        QFETCH(QString, stored);
        test::writeFile(path(), cp1251::encode(QString("[Window]\nState=" + stored + "\n")));
        QTEST(placedState(LoadWinPos(ini())), "state");
    }
};

VINORA_TEST_MAIN(tst_settingsfile)
#include "tst_settingsfile.moc"
