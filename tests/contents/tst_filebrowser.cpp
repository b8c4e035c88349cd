#include "../recognition/DamagedImages.h"
#include "../recognition/DiscFixtures.h"
#include "contents/DiscFileExtract.h"
#include "contents/DiscScan.h"
#include "contents/FileTree.h"
#include "contents/StoredFileList.h"
#include "contents/frmEditFilter.h"
#include "contents/frmFileList.h"
#include "contents/frmFileListCreate.h"
#include "contents/frmFileListOption.h"
#include "recognition/Drives.h"
#include "recognition/VolumeIdentity.h"
#include "recognition/VolumeReader.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"
#include "support/Widgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDirIterator>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>

using namespace vinora;

namespace {

struct Lists
{
    test::TestApp app;
    Lists()
    {
        Reanimator(app.ctx, 0);
        Db db(app.ctx.MainDBPath);
        db.exec("INSERT INTO Компьютер (Номер, Название, КодОписания, Дисков) VALUES (4, 'Программы', 1, 2)");
    }
    // A list made by hand: rows of (name, path, size).
    void makeList(const QString& id, const QList<QStringList>& rows)
    {
        Db files(app.ctx.FilesDBPath);
        ContentsLists(files, ContentsKind::Files).create(id);
        for (const QStringList& row : rows) {
            files.exec("INSERT INTO Файлы (ДискID, Имя, Путь, Размер) VALUES (?, ?, ?, ?)",
                       {id, row[0], row[1], row[2]});
        }
        Db db(app.ctx.MainDBPath);
        db.exec("UPDATE Компьютер SET ДискID1 = ?", {id});
        app.ctx.DiscIDSlots[0] = id;
    }
    // Puts a disc image in the drive; its list id comes back.
    QString insert(const QString& image) const
    {
        addVirtualDrive(app.ctx.ini(), image);
        setChosenDrive(app.ctx.ini(), image);
        return QString::number(readVolumeInfo(image).serial, 16).toUpper();
    }
};

// Clicks, or double-clicks, the row of `text` in a shown view, as the user does.
void clickRow(QTreeWidget* view, const QString& text, bool twice = false)
{
    const QList<QTreeWidgetItem*> found = view->findItems(text, Qt::MatchExactly);
    QVERIFY2(!found.isEmpty(), qPrintable(text));
    view->scrollToItem(found.first());
    const QPoint at = view->visualItemRect(found.first()).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
    if (twice) {
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
    }
}

QStringList column(const QTreeWidget* view, int index)
{
    QStringList texts;
    for (int i = 0; i < view->topLevelItemCount(); ++i) {
        texts.append(view->topLevelItem(i)->text(index));
    }
    return texts;
}

} // namespace

class tst_filebrowser : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};

private slots:
    void tree_data()
    {
        QTest::addColumn<QStringList>("paths");
        QTest::addColumn<QStringList>("nodes");
        QTest::newRow("root only") << QStringList{"\\"} << QStringList{"..."};
        QTest::newRow("root beside the first level")
            << QStringList{"\\", "\\A\\", "\\A\\B\\", "\\C\\"} << QStringList{"...", "A", "A/B", "C"};
        QTest::newRow("same place, same length: taken for the one before")
            << QStringList{"\\A\\X\\", "\\B\\X\\", "\\B\\X\\Y\\"} << QStringList{"A", "A/X", "B", "B/Y"};
        QTest::newRow("different length")
            << QStringList{"\\A\\X\\", "\\B\\XX\\"} << QStringList{"A", "A/X", "B", "B/XX"};
    }

    void tree()
    {
        QFETCH(QStringList, paths);
        const auto built = BuildTree(paths);
        QVERIFY(built);
        QStringList texts;
        for (const FileTreeNode& node : *built) {
            texts.append(node.parent < 0 ? node.text : texts[node.parent] + '/' + node.text);
        }
        QTEST(texts, "nodes");
        QVERIFY(!BuildTree({"\\" + QString("d\\").repeated(41)}));
    }

    void volumes_data()
    {
        QTest::addColumn<QStringList>("sizes");
        QTest::addColumn<QString>("text");
        QTest::newRow("no rows") << QStringList{} << "~0 Мб";
        QTest::newRow("root only") << QStringList{"0"} << "~1 Мб";
        QTest::newRow("999") << QStringList{"999,0"} << "~1 Мб";
        QTest::newRow("1000") << QStringList{"1" + QString(QLocale().groupSeparator()) + "000,0"} << "~1 Мб";
        QTest::newRow("12345") << QStringList{"12000,0", "345,0"} << "~12 Мб";
        QTest::newRow("123456") << QStringList{"123456"} << "~123 Мб";
        QTest::newRow("1,5") << QStringList{"1,5"} << "~1 Мб";
        QTest::newRow("seven digits") << QStringList{"1234567"} << "~1234567 Мб";
    }

    void volumes()
    {
        QFETCH(QStringList, sizes);
        QTEST(listVolumeText(sizes), "text");
    }

    // The quick reading of sizes agrees with the locale's on what a scan writes and on
    // what it does not.
    void sizesReadAsTheLocaleReads_data()
    {
        QTest::addColumn<QString>("size");
        const QString g = QLocale().groupSeparator();
        const QStringList sizes = {"0",
                                   "17",
                                   "0,5",
                                   "4" + g + "096,0",
                                   "1" + g + "000" + g + "000,25",
                                   "12" + g + "34,0",
                                   "1234" + g + "567",
                                   g + "123",
                                   "5,",
                                   ",5",
                                   "1,2,3",
                                   "abc",
                                   "",
                                   "1 000",
                                   "-3",
                                   "1e3",
                                   "0x10"};
        for (const QString& size : sizes) {
            QTest::newRow(qPrintable(size)) << size;
        }
    }

    void sizesReadAsTheLocaleReads()
    {
        QFETCH(QString, size);
        QCOMPARE(storedKilobytes(size, QLocale()), QLocale().toDouble(size));
    }

    void images()
    {
        QCOMPARE(fileImage("SETUP.EXE"), 2);
        QCOMPARE(fileImage("a.tar.zip"), 3);
        QCOMPARE(fileImage("song.MP3"), 7);
        QCOMPARE(fileImage("index.html"), 12);
        QCOMPARE(fileImage("readme"), 1);
    }

    void rootOnlyListAndComments()
    {
        Lists l;
        l.makeList("ABCD", {{"\\", "\\", "0"}});
        frmFileList list(l.app.ctx, 4, "Программы", 2);
        QCOMPARE(list.treeTexts(), QStringList{"..."});
        QCOMPARE(list.findChild<QTreeWidget*>("lvFiles")->headerItem()->text(0), "Файлов: 0");
        QCOMPARE(list.volumeText(), "~1 Мб");
        QVERIFY(list.findChild<QLineEdit*>("txtCommentDir")->isEnabled());
        QVERIFY(!list.findChild<QLineEdit*>("txtCommentFile")->isEnabled());

        auto* comment = list.findChild<QLineEdit*>("txtCommentDir");
        comment->setText("Мой \"лучший\" [диск]");
        list.cmdMakeChangeDir();
        QCOMPARE(comment->text(), "Мой 'лучший' (диск)");
        QCOMPARE(l.app.prompter.texts().last(), "Комментарий к папке '...' успешно изменен.");
        Db files(l.app.ctx.FilesDBPath);
        QCOMPARE(files.scalar("SELECT Комментарий FROM Файлы WHERE Путь = '\\'").toString(),
                 "Мой 'лучший' (диск)");
    }

    void storedComments_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("comment");
        QTest::addColumn<bool>("stored");
        QTest::addColumn<QVariant>("value");
        const QString root = "\\";
        const QString docs = "\\DOCS\\";
        QTest::newRow("folder") << docs << docs << "папка" << true << QVariant("папка");
        QTest::newRow("cut to 50") << root << "a.txt" << QString(60, u'ж') << true
                                   << QVariant(QString(50, u'ж'));
        QTest::newRow("empty is none") << root << QString("a.txt") << "" << true << QVariant();
        QTest::newRow("file of another folder") << docs << QString("a.txt") << "x" << false << QVariant();
        QTest::newRow("only in another list") << root << QString("b.txt") << "x" << false << QVariant();
    }
    void storedComments()
    {
        QFETCH(QString, folder);
        QFETCH(QString, name);
        QFETCH(QString, comment);
        QFETCH(bool, stored);
        QFETCH(QVariant, value);
        Lists l;
        l.makeList("OTHER", {{"a.txt", "\\", "1"}, {"b.txt", "\\", "1"}});
        l.makeList("77", {{"\\", "\\", "0"}, {"a.txt", "\\", "0,1"}, {"\\DOCS\\", "\\DOCS\\", "0"}});
        const StoredFileList list(l.app.ctx.FilesDBPath, "77");
        QCOMPARE(list.setComment(folder, name, comment), stored);
        if (stored) {
            QCOMPARE(list.fileComment(folder, name), value.toString());
            Db files(l.app.ctx.FilesDBPath);
            const QVariant inDb = files.scalar(
                "SELECT Комментарий FROM Файлы WHERE ДискID = '77' AND Путь = ? AND Имя = ?", {folder, name});
            QCOMPARE(inDb.isNull(), value.isNull());
            QCOMPARE(inDb.toString(), value.toString());
        }
        Db files(l.app.ctx.FilesDBPath);
        QCOMPARE(files.scalar("SELECT COUNT(Комментарий) FROM Файлы WHERE ДискID = 'OTHER'").toInt(), 0);
    }

    void filesCommentsAndDeletion()
    {
        Lists l;
        l.makeList("77", {{"\\", "\\", "0"},
                          {"a.txt", "\\", "0,1"},
                          {"\\DOCS\\", "\\DOCS\\", "0"},
                          {"guide.doc", "\\DOCS\\", "1 000,0"},
                          {"it's \"q\".txt", "\\DOCS\\", "2,0"}});
        frmFileList list(l.app.ctx, 4, "Программы", 2);
        QCOMPARE(list.treeTexts(), (QStringList{"...", "DOCS"}));
        QCOMPARE(list.fileNames(), QStringList{"a.txt"});
        list.selectFolder(1);
        QCOMPARE(list.fileNames(), (QStringList{"guide.doc", "it's \"q\".txt"}));
        auto* files = list.findChild<QTreeWidget*>("lvFiles");
        files->setCurrentItem(files->topLevelItem(1));
        list.selectFile("it's \"q\".txt");
        list.findChild<QLineEdit*>("txtCommentFile")->setText("заметка");
        list.cmdMakeChangeFile();
        QCOMPARE(l.app.prompter.texts().last(), "Комментарий к файлу 'it's \"q\".txt' успешно изменен.");

        // Opening a file needs the disc in the drive.
        list.lvFiles_DblClick();
        QCOMPARE(l.app.prompter.texts().last(),
                 "Вставьте диск № 4 в устройство для чтения компакт-дисков и повторите операцию.");

        l.app.prompter.answer(Answer::Yes);
        list.deleteListAsk();
        QCOMPARE(l.app.prompter.texts().last(),
                 "Вы действительно хотите удалить информация о структуре 1-го диска № 4?");
        QCOMPARE(list.volumeText(), "~0 Мб");
        Db db(l.app.ctx.MainDBPath);
        QVERIFY(db.scalar("SELECT ДискID1 FROM Компьютер").isNull());
        Db filesDb(l.app.ctx.FilesDBPath);
        QVERIFY(!ContentsLists(filesDb, ContentsKind::Files).exists("77"));
    }

    void scanThroughTheWindows()
    {
        Lists l;
        const QString id = l.insert(m_discs.iso("scan.iso", {"-J", "-V", "SCAN"}));
        l.app.ctx.ini().write("Option", "SaveFileListOption", "1");
        frmFileList list(l.app.ctx, 4, "Программы", 2);
        const auto runWalk = [](QDialog& dialog) {
            dialog.show();
            [&] { QTRY_VERIFY_WITH_TIMEOUT(!dialog.isVisible(), 20000); }();
            return dialog.result();
        };
        l.app.prompter.handleModal([&](QDialog& dialog) {
            auto& options = static_cast<frmFileListOption&>(dialog);
            options.findChild<QCheckBox*>("chLCase")->setChecked(true);
            l.app.prompter.handleModal(runWalk);
            options.cmdStartScan();
            return options.result();
        });
        list.cmdCreate();
        QCOMPARE(l.app.ctx.DiscIDSlots[0], id);
        QVERIFY(list.treeTexts().contains("DOCS"));
        QVERIFY(list.fileNames().contains("readme.txt"));
        Db db(l.app.ctx.MainDBPath);
        QCOMPARE(db.scalar("SELECT ДискID1 || '/' || ДискID1_d FROM Компьютер").toString(), id + "/" + id);
        QCOMPARE(l.app.ctx.ini().read("FileListOption", "LCase", 2), "1");

        // The second disc of the set is the same disc: the clash question and a made-up id.
        list.findChild<QComboBox*>("cmbCountCD")->setCurrentIndex(1);
        list.cmbCountCD_Click();
        l.app.prompter.answer(Answer::Yes);
        l.app.prompter.handleModal([&](QDialog& dialog) {
            auto& options = static_cast<frmFileListOption&>(dialog);
            [&] {
                QVERIFY(options.findChild<QCheckBox*>("chLCase")->isChecked());
            }(); // kept from the last time
            l.app.prompter.handleModal(runWalk);
            options.cmdStartScan();
            return options.result();
        });
        list.cmdCreate();
        QVERIFY(l.app.prompter.texts().last().startsWith("Серийный номер этого диска совпадает"));
        QVERIFY(!l.app.ctx.DiscIDSlots[1].isEmpty() && l.app.ctx.DiscIDSlots[1] != id);
        QVERIFY(list.fileNames().contains("readme.txt"));
    }

    void closingStopsTheWalk()
    {
        Lists l;
        {
            Db files(l.app.ctx.FilesDBPath);
            ContentsLists(files, ContentsKind::Files).create("STOP");
        }
        ScanRequest request;
        request.drive = m_discs.iso("stop.iso", {"-J"});
        frmFileListCreate walk(l.app.ctx, request, "STOP");
        walk.reject(); // closed: the walk ends at its first look
        walk.show();
        QTRY_VERIFY(!walk.isVisible());
        QCOMPARE(walk.rowsStored(), 0);

        frmFileListCreate full(l.app.ctx, request, "STOP");
        full.show();
        QTRY_VERIFY(!full.isVisible());
        QVERIFY(full.rowsStored() > 5);
    }

    // The files are shown in the order the list is read in: the catalogue's order, Latin
    // before Cyrillic, case aside. A click on a column sorts by it as text; a click on the
    // sorting column turns the order round.
    void filesKeepTheListOrderAndSortByColumnClicks()
    {
        Lists l;
        l.makeList("ORDER", {{"\\", "\\", "0"},
                             {"яблоко.txt", "\\", "25,0"},
                             {"Banana.txt", "\\", "12,0"},
                             {"ель.txt", "\\", "0,5"},
                             {"apple.txt", "\\", "100,0"},
                             {"Ёлка.doc", "\\", "2,0"},
                             {"zebra.exe", "\\", "3,5"},
                             {"Арбуз.txt", "\\", "1 000,0"}});
        frmFileList list(l.app.ctx, 4, "Программы", 2);
        list.show();
        QVERIFY(QTest::qWaitForWindowExposed(&list));
        auto* files = list.findChild<QTreeWidget*>("lvFiles");
        const QStringList listOrder{"apple.txt", "Banana.txt", "zebra.exe", "Арбуз.txt",
                                    "Ёлка.doc",  "ель.txt",    "яблоко.txt"};
        QCOMPARE(list.fileNames(), listOrder);
        Db db(l.app.ctx.FilesDBPath);
        QCOMPARE(db.texts("SELECT Имя FROM Файлы WHERE ДискID = 'ORDER' AND Имя <> Путь ORDER BY Путь, Имя"),
                 listOrder);

        test::clickHeader(files->header(), 0);
        QStringList reversed = listOrder;
        std::reverse(reversed.begin(), reversed.end());
        QCOMPARE(list.fileNames(), reversed);
        QCOMPARE(files->header()->sortIndicatorOrder(), Qt::DescendingOrder);

        test::clickHeader(files->header(), 1);
        QCOMPARE(column(files, 1), (QStringList{"0,5", "1 000,0", "100,0", "12,0", "2,0", "25,0", "3,5"}));
        test::clickHeader(files->header(), 1);
        QCOMPARE(column(files, 1), (QStringList{"3,5", "25,0", "2,0", "12,0", "100,0", "1 000,0", "0,5"}));
        QCOMPARE(files->header()->sortIndicatorSection(), 1);

        // A comment goes with the file it is written for, wherever the row stands.
        clickRow(files, "Ёлка.doc");
        list.findChild<QLineEdit*>("txtCommentFile")->setText("ёлочка");
        list.cmdMakeChangeFile();
        QCOMPARE(db.scalar("SELECT Комментарий FROM Файлы WHERE Имя = 'Ёлка.doc'").toString(), "ёлочка");
    }

    // A double click on a file of a disc image registered as a drive copies the file out of
    // the image and opens the copy (FilesAction 1) or the folder that holds it.
    void openingAFileOfADiscImage_data()
    {
        QTest::addColumn<QString>("filesAction");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("file");
        QTest::newRow("the file") << QString("1") << QString("DOCS") << "guide.doc";
        QTest::newRow("its folder") << QString("0") << QString("DOCS") << "guide.doc";
        QTest::newRow("Cyrillic names") << QString("1") << QString("Музыка/Альбом") << "трек 01.mp3";
        QTest::newRow("in the root") << QString("1") << QString() << "readme.txt";
    }

    void openingAFileOfADiscImage()
    {
        QFETCH(QString, filesAction);
        QFETCH(QString, folder);
        QFETCH(QString, file);
        Lists l;
        const QString iso = m_discs.iso("open.iso", {"-J", "-V", "OPEN"});
        const QString id = l.insert(iso);
        l.app.ctx.ini().write("Option", "FilesAction", filesAction);
        ScanRequest request{iso, "PcCD", id, ScanOptions{}, 4, 1, false};
        QVERIFY(startScan(l.app.ctx, request, {}).done);

        frmFileList list(l.app.ctx, 4, "Программы", 2);
        list.show();
        QVERIFY(QTest::qWaitForWindowExposed(&list));
        if (!folder.isEmpty()) {
            const qsizetype node = list.treeTexts().indexOf(folder);
            QVERIFY(node >= 0);
            list.selectFolder(int(node));
        }
        clickRow(list.findChild<QTreeWidget*>("lvFiles"), file, true);
        QTRY_COMPARE_WITH_TIMEOUT(l.app.prompter.openedUrls.size(), 1, 20000);
        const QString opened = l.app.prompter.openedUrls.first().toLocalFile();
        const QString copy = filesAction == "1" ? opened : QDir(opened).filePath(file);
        QCOMPARE(QFileInfo(copy).fileName(), file);
        QVERIFY(!copy.startsWith(m_discs.path("tree")));
        QCOMPARE(test::readFile(copy), test::readFile(m_discs.path("tree/" + folder + "/" + file)));
        QVERIFY(l.app.prompter.texts().isEmpty());
    }

    // What cannot be copied out is told, and nothing is opened or left behind.
    void filesThatCannotBeOpened_data()
    {
        QTest::addColumn<bool>("damaged");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("message");
        QTest::newRow("a file the disc does not hold")
            << false << QString("GONE.TXT")
            << "Файл 'GONE.TXT' на диске не найден. Возможно, список файлов устарел: пересоздайте его.";
        QTest::newRow("a file past the end of the image")
            << true << QString("GUIDE.DOC") << "Ошибка чтения диска! Файл 'GUIDE.DOC' не удалось прочитать.";
    }

    void filesThatCannotBeOpened()
    {
        QFETCH(bool, damaged);
        QFETCH(QString, file);
        QFETCH(QString, message);
        Lists l;
        QByteArray image = test::readFile(m_discs.iso("plain-open.iso", {"-V", "PLAIN"}));
        if (damaged) {
            const qint64 docs = test::isoRecord(image, test::isoRootExtent(image), "DOCS");
            QVERIFY(docs > 0);
            const qint64 guide = test::isoRecord(image, test::le32At(image, docs + 2), "GUIDE.DOC");
            QVERIFY(guide > 0);
            test::pointIsoRecord(image, guide, 0x7FFFFF00);
        }
        const QString iso =
            m_dir.filePath(damaged ? QString("damaged-open.iso") : QString("plain-open-copy.iso"));
        test::writeFile(iso, image);
        const QString id = l.insert(iso);
        l.app.ctx.ini().write("Option", "FilesAction", "1");
        l.makeList(id, {{"\\", "\\", "0"}, {"\\DOCS\\", "\\DOCS\\", "0"}, {file, "\\DOCS\\", "1,0"}});
        frmFileList list(l.app.ctx, 4, "Программы", 2);
        list.show();
        QVERIFY(QTest::qWaitForWindowExposed(&list));
        list.selectFolder(int(list.treeTexts().indexOf("DOCS")));
        clickRow(list.findChild<QTreeWidget*>("lvFiles"), file, true);
        QTRY_VERIFY_WITH_TIMEOUT(!l.app.prompter.texts().isEmpty(), 20000);
        QCOMPARE(l.app.prompter.texts(), QStringList{message});
        QVERIFY(l.app.prompter.openedUrls.isEmpty());
    }

    void copyingOutOfAVolume()
    {
        const QString iso = m_discs.iso("extract.iso", {"-R"});
        const auto volume = openVolumeReader(iso);
        QVERIFY(volume);
        QTemporaryDir folder;
        const auto files = [&folder] {
            QStringList found;
            QDirIterator it(folder.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
            while (it.hasNext()) {
                found.append(QFileInfo(it.next()).fileName());
            }
            return found;
        };
        using Status = ExtractedFile::Status;
        const ExtractedFile tooLarge = extractDiscFile(*volume, "DOCS/guide.doc", folder.path(), 1023999);
        QCOMPARE(tooLarge.status, Status::TooLarge);
        QCOMPARE(tooLarge.size, 1024000);
        const ExtractedFile stopped =
            extractDiscFile(*volume, "DOCS/guide.doc", folder.path(), 1 << 30, [] { return true; });
        QCOMPARE(stopped.status, Status::Cancelled);
        QCOMPARE(extractDiscFile(*volume, "DOCS", folder.path(), 1 << 30).status, Status::NotFound);
        QCOMPARE(extractDiscFile(*volume, "NO/guide.doc", folder.path(), 1 << 30).status, Status::NotFound);
        QCOMPARE(
            extractDiscFile(*volume, "DOCS/guide.doc", folder.filePath("no/such/folder"), 1 << 30).status,
            Status::CannotWrite);
        QCOMPARE(files(), QStringList{});
        // A name stored in lower case finds the file in whatever case the disc has it.
        const ExtractedFile done = extractDiscFile(*volume, "DOCS/GUIDE.DOC", folder.path(), 1024000);
        QCOMPARE(done.status, Status::Done);
        QCOMPARE(done.path, folder.filePath("guide.doc"));
        QCOMPARE(test::readFile(done.path), test::readFile(m_discs.path("tree/DOCS/guide.doc")));
        QCOMPARE(extractDiscFile(m_dir.filePath("missing.iso"), "readme.txt", folder.path(), 1 << 30).status,
                 Status::Unreadable);
    }

    // Each tick rules only what its own click rules: unticking the folders disables the
    // names-only box and leaves the filter as that box left it.
    void optionTickRules_data()
    {
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QString>("state"); // of "dirsOnly filter filterChoice applied namesOnly"
        const auto row = [](const char* tag, const QStringList& clicks, const QString& state) {
            QTest::newRow(tag) << clicks << state;
        };
        row("as opened", {}, "dirsOnly filter");
        row("filter", {"chFilter"}, "dirsOnly filter filterChoice applied");
        row("names only", {"chFilter", "chScanDirOnly"}, "dirsOnly namesOnly");
        row("names only, then no folders", {"chFilter", "chScanDirOnly", "chScanDir"}, "");
        row("names only, no folders, folders again", {"chFilter", "chScanDirOnly", "chScanDir", "chScanDir"},
            "dirsOnly namesOnly");
        row("filter, then no folders", {"chFilter", "chScanDir"}, "filter filterChoice applied");
        row("names only on and off", {"chFilter", "chScanDirOnly", "chScanDirOnly"},
            "dirsOnly filter filterChoice applied");
    }

    void optionTickRules()
    {
        QFETCH(QStringList, clicks);
        Lists l;
        l.insert(m_discs.iso("ticks.iso", {"-J"}));
        frmFileListOption options(l.app.ctx, 4, 1);
        for (const QString& box : clicks) {
            options.findChild<QCheckBox*>(box)->click();
        }
        QCOMPARE(options.findChild<QRadioButton*>("optFilter0")->isEnabled(),
                 options.findChild<QRadioButton*>("optFilter1")->isEnabled());
        const std::pair<const char*, bool> state[] = {
            {"dirsOnly", options.findChild<QCheckBox*>("chScanDirOnly")->isEnabled()},
            {"filter", options.findChild<QCheckBox*>("chFilter")->isEnabled()},
            {"filterChoice", options.findChild<QRadioButton*>("optFilter0")->isEnabled()},
            {"applied", options.options().filter.has_value()},
            {"namesOnly", options.options().scanDirOnly}};
        QString found;
        for (const auto& [name, on] : state) {
            found += on ? QString::fromUtf8(name) + ' ' : QString();
        }
        QTEST(found.trimmed(), "state");
    }

    // A filter of more used entries than the scan holds is a fault of the loading of the
    // filter, not of the walk.
    void filterOfTooManyEntriesIsAFaultOfItsLoading()
    {
        Lists l;
        {
            Db files(l.app.ctx.FilesDBPath);
            for (int i = 0; i < 43; ++i) {
                files.exec("INSERT INTO Фильтр1 (Файл) VALUES (?)", {QString(".x%1").arg(i)});
            }
        }
        const QString iso = m_discs.iso("filtered.iso", {"-J"});
        ScanRequest request{iso, "PcCD", "F1", ScanOptions{}, 4, 1, false};
        request.options.filter = FilterTable::Exclude;
        QVERIFY_THROWS_EXCEPTION(ProcessEnded, startScan(l.app.ctx, request, {}));
        const QString log = QString::fromUtf8(test::readFile(l.app.file("bugreport.log")));
        QVERIFY2(log.contains("frmFileListCreate, FullArrayFileFiltr()"), qPrintable(log));
        QVERIFY(!log.contains("CreateFileList"));
    }

    void filterEditor()
    {
        Lists l;
        frmEditFilter editor(l.app.ctx);
        editor.show();
        QVERIFY(QTest::qWaitForWindowExposed(&editor));
        auto* view = editor.findChild<QTreeWidget*>("lvFilter");
        QVERIFY(view);
        QCOMPARE(view->headerItem()->text(0), "Файлы (8)");
        QCOMPARE(editor.selectedEntry(), ".diz");
        QCOMPARE(editor.entries().size(), 8);

        // A double click changes an entry, which stays the selected one.
        l.app.prompter.answerInput(".docx");
        clickRow(view, ".doc", true);
        QCOMPARE(editor.selectedEntry(), ".docx");
        QVERIFY(editor.entries().contains("[x] .docx"));
        QCOMPARE(view->headerItem()->text(0), "Файлы (8)");
        l.app.prompter.answer(Answer::Yes);
        editor.cmdDelete();
        QCOMPARE(l.app.prompter.texts().last(), "Вы действительно хотите удалить файл '.docx'?");
        QCOMPARE(view->headerItem()->text(0), "Файлы (7)");
        QCOMPARE(editor.selectedEntry(), ".diz");
        l.app.prompter.answerInput(".TXT");
        l.app.prompter.answer(Answer::No);
        editor.cmdAddFile();
        QCOMPARE(l.app.prompter.texts().last(), "Файл '.TXT' уже существует. Ввести другое?");
        l.app.prompter.answerInput(".bak");
        editor.cmdAddFile();
        QVERIFY(editor.entries().contains("[x] .bak"));
        QCOMPARE(editor.selectedEntry(), ".bak");
        QCOMPARE(view->headerItem()->text(0), "Файлы (8)");
        editor.setAllTicks(false);
        Db files(l.app.ctx.FilesDBPath);
        QCOMPARE(files.scalar("SELECT COUNT(*) FROM Фильтр1 WHERE Use <> 0").toInt(), 0);
        editor.chooseTable(FilterTable::Include);
        QCOMPARE(editor.entries(), (QStringList{"[x] .exe", "[x] .rar", "[x] .zip"}));
        QCOMPARE(view->headerItem()->text(0), "Файлы (3)");
        for (int i = 0; i < 47; ++i) {
            files.exec("INSERT INTO Фильтр2 (Файл) VALUES (?)", {QString(".x%1").arg(i)});
        }
        editor.chooseTable(FilterTable::Include);
        editor.cmdAddFile();
        QCOMPARE(l.app.prompter.texts().last(), "Количество файлов не должно превышать 50!");
    }
};

VINORA_TEST_MAIN(tst_filebrowser)
#include "tst_filebrowser.moc"
