#include "../recognition/DiscFixtures.h"
#include "contents/FileTree.h"
#include "contents/StoredFileList.h"
#include "contents/frmEditFilter.h"
#include "contents/frmFileList.h"
#include "contents/frmFileListCreate.h"
#include "contents/frmFileListOption.h"
#include "recognition/Drives.h"
#include "recognition/VolumeIdentity.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
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
};

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
        QFETCH(QStringList, nodes);
        const auto built = BuildTree(paths);
        QVERIFY(built);
        QStringList texts;
        for (const FileTreeNode& node : *built) {
            texts.append(node.parent < 0 ? node.text : texts[node.parent] + '/' + node.text);
        }
        QCOMPARE(texts, nodes);
        QString deep = "\\";
        for (int i = 0; i < 41; ++i) {
            deep += "d\\";
        }
        QVERIFY(!BuildTree({deep}));
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
        QFETCH(QString, text);
        QCOMPARE(listVolumeText(sizes), text);
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
        QTest::newRow("folder") << "\\DOCS\\"
                                << "\\DOCS\\"
                                << "папка" << true << QVariant("папка");
        QTest::newRow("cut to 50") << "\\"
                                   << "a.txt" << QString(60, u'ж') << true << QVariant(QString(50, u'ж'));
        QTest::newRow("empty is none") << "\\"
                                       << "a.txt"
                                       << "" << true << QVariant();
        QTest::newRow("file of another folder") << "\\DOCS\\"
                                                << "a.txt"
                                                << "x" << false << QVariant();
        QTest::newRow("only in another list") << "\\"
                                              << "b.txt"
                                              << "x" << false << QVariant();
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
        const QString iso = m_discs.iso("scan.iso", {"-J", "-V", "SCAN"});
        const QString id = QString::number(readVolumeInfo(iso).serial, 16).toUpper();
        addVirtualDrive(l.app.ctx.ini(), iso);
        setChosenDrive(l.app.ctx.ini(), iso);
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

    void filterEditor()
    {
        Lists l;
        frmEditFilter editor(l.app.ctx);
        QCOMPARE(editor.entries().size(), 8);
        l.app.prompter.answerInput(".TXT");
        l.app.prompter.answer(Answer::No);
        editor.cmdAddFile();
        QCOMPARE(l.app.prompter.texts().last(), "Файл '.TXT' уже существует. Ввести другое?");
        l.app.prompter.answerInput(".bak");
        editor.cmdAddFile();
        QVERIFY(editor.entries().contains("[x] .bak"));
        editor.setAllTicks(false);
        Db files(l.app.ctx.FilesDBPath);
        QCOMPARE(files.scalar("SELECT COUNT(*) FROM Фильтр1 WHERE Use <> 0").toInt(), 0);
        editor.chooseTable(FilterTable::Include);
        QCOMPARE(editor.entries(), (QStringList{"[x] .exe", "[x] .rar", "[x] .zip"}));
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
