#include "contents/frmTrackList.h"
#include "mainwindow/frmMain.h"
#include "search/SearchTexts.h"
#include "search/frmDBFind.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/DataRows.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"
#include "support/Widgets.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTreeWidget>

using namespace vinora;

namespace {

// Computer discs 12 (lists AAAA, BBBB) and 5 (CCCC); audio discs 3 (T1, T2) and 1 (T3). The
// folder \Архив\ holds 200 files and T3 150 tracks: a hit at their end lies below the first
// screen of its list.
struct Catalogue
{
    test::TestApp app;

    Catalogue()
    {
        Reanimator(app.ctx, 0);
        const Db db(app.ctx.MainDBPath);
        db.exec("INSERT INTO Компьютер (Номер, Название, КодОписания, Дисков, ДискID1, ДискID2) "
                "VALUES (12, 'Первый', 1, 2, 'AAAA', 'BBBB'), (5, 'Второй', 1, 1, 'CCCC', NULL)");
        db.exec("INSERT INTO Аудио (Номер, Название, КодСтиля, Дисков, ДискID1, ДискID2) "
                "VALUES (3, 'Кино', 1, 2, 'T1', 'T2'), (1, 'Сборник', 1, 1, 'T3', NULL)");
        QStringList archive, songs{"rock"};
        for (int i = 0; i < 200; ++i) {
            archive.append(QString("запись %1.dat|\\Архив\\|").arg(i, 3, 10, QChar('0')));
        }
        for (int i = 2; i <= 150; ++i) {
            songs.append(QString("Песня %1").arg(i, 3, 10, QChar('0')));
        }
        list(ContentsKind::Files, "AAAA",
             QStringList{"\\|\\|корень", "Ёлка.txt|\\|", "\\Архив\\|\\Архив\\|", "\\Музыка\\|\\Музыка\\|",
                         "Группа крови.mp3|\\Музыка\\|хит"} +
                 archive);
        list(ContentsKind::Files, "BBBB",
             {"\\|\\|", "rock.txt|\\|", "\\Rock\\|\\Rock\\|", "rock.mp3|\\Rock\\|гитара"});
        list(ContentsKind::Files, "CCCC", {"\\|\\|", "rock.doc|\\|"});
        list(ContentsKind::Tracks, "T1", {"Группа крови", "Кукушка"});
        list(ContentsKind::Tracks, "T2", {"Rock Ballads", "Звезда"});
        list(ContentsKind::Tracks, "T3", songs);
    }
    // Files as "name|path|comment", tracks by their titles.
    void list(ContentsKind kind, const QString& id, const QStringList& rows) const
    {
        const bool files = kind == ContentsKind::Files;
        const Db db(files ? app.ctx.FilesDBPath : app.ctx.TracksDBPath);
        ContentsLists(db, kind).create(id);
        Transaction transaction(db);
        Statement insert(db, files ? QString("INSERT INTO Файлы (ДискID, Имя, Путь, Комментарий, Размер) "
                                             "VALUES (?, ?, ?, NULLIF(?, ''), '1')")
                                   : "INSERT INTO Треки (ДискID, Название, Номер) VALUES (?, ?, ?)");
        for (int i = 0; i < rows.size(); ++i) {
            insert.run(files ? QVariantList{id, rows[i].section('|', 0, 0), rows[i].section('|', 1, 1),
                                            rows[i].section('|', 2)}
                             : QVariantList{id, rows[i], i + 1});
        }
        transaction.commit();
    }
};

using test::child;

QString cells(const QTreeWidgetItem* item, int count)
{
    QStringList texts;
    for (int column = 0; column < count; ++column) {
        texts.append(item->text(column));
    }
    return texts.join('|');
}

// The hits "name|№|path" one after another, "; " between.
QString hits(const frmDBFind& window)
{
    const auto* list = child<QTreeWidget>(window, "lvFind");
    QStringList rows;
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        rows.append(cells(list->topLevelItem(i), list->columnCount()));
    }
    return rows.join("; ");
}

// Sets what to search for as a user does, presses Enter in the text field and, unless told
// otherwise, waits for the end of the search.
void search(frmDBFind& window, bool folders, bool whole, bool comments, const QString& text, bool wait = true)
{
    child<QRadioButton>(window, folders ? "optSearchMethod1" : "optSearchMethod0")->click();
    child<QCheckBox>(window, "chWholeWord")->setChecked(whole);
    child<QCheckBox>(window, "chCommentOnly")->setChecked(comments);
    child<QLineEdit>(window, "txtSearchText")->setText(text);
    QTest::keyClick(child(window, "txtSearchText"), Qt::Key_Return);
    if (wait) {
        QTRY_VERIFY_WITH_TIMEOUT(!window.searching(), 20000);
    }
}

bool inView(const QAbstractItemView* view, const QRect& item)
{
    return view->viewport()->rect().contains(item.center());
}

// What a list opened from a hit shows: its window, the disc chosen, the folder or track made
// current, the current file and the files in bold.
QString listState(QDialog& dialog, const AppContext& ctx)
{
    dialog.show();
    QApplication::processEvents();
    QStringList state{dialog.objectName(), child<QComboBox>(dialog, "cmbCountCD")->currentText()};
    bool visible = false;
    if (auto* tracks = qobject_cast<frmTrackList*>(&dialog)) {
        const auto* grid = dialog.findChild<QTableWidget*>();
        const int row = tracks->currentTrack();
        state << tracks->trackNames().value(row) << ""
              << "";
        visible = row >= 0 && inView(grid, grid->visualItemRect(grid->item(row, 1)));
    } else {
        const auto* tree = child<QTreeWidget>(dialog, "trView");
        const auto* files = child<QTreeWidget>(dialog, "lvFiles");
        QStringList bold;
        for (int i = 0; i < files->topLevelItemCount(); ++i) {
            if (files->topLevelItem(i)->font(0).bold()) {
                bold.append(files->topLevelItem(i)->text(0));
            }
        }
        state << tree->currentItem()->text(0) << files->currentItem()->text(0) << bold.join(',');
        visible = inView(tree, tree->visualItemRect(tree->currentItem())) &&
                  inView(files, files->visualItemRect(files->currentItem()));
    }
    dialog.hide();
    // The place is out of view, or the search window does not count as open: said instead.
    return !visible                ? QString("out of view")
           : !ctx.OpenedFromSearch ? QString("search closed")
                                   : state.join(" / ");
}

} // namespace

class tst_dbfind : public QObject
{
    Q_OBJECT

private slots:
    void searchesAsChosen_data()
    {
        // The window opened with `category`; `options` ticked; what the list and its line show, and
        // what is said when nothing is found.
        test::addColumns<QString>({"category", "options", "text", "found", "said"});
        const auto row = test::addRow<QString, QString, QString, QString, QString>;
        row("files: disc 2, root", "", "", "ROCK",
            "rock.txt|12 (2)|...; rock.mp3|12 (2)|\\Rock\\; rock.doc|5|...",
            "Результат поиска (найдено файлов: 3):");
        row("folders", "PC", "folders", "rock", "\\Rock\\|12 (2)|\\Rock\\",
            "Результат поиска (найдено файлов: 1):");
        row("comments", "", "comments", "ХИТ", "Группа крови.mp3|12|\\Музыка\\",
            "Результат поиска (найдено файлов: 1):");
        row("tracks", "AD", "", "rock", "Rock Ballads|3 (2); rock|1",
            "Результат поиска (найдено треков: 2):");
        row("whole title", "AD", "whole", "rock", "rock|1", "Результат поиска (найдено треков: 1):");
        row("no file", "", "whole", "ёлка", "", "Результат поиска: / Нет таких файлов!");
        row("no folder", "", "folders", "Ёлка", "", "Результат поиска: / Нет таких папок!");
        row("no track", "AD", "comments", "кино", "", "Результат поиска: / Нет таких треков!");
    }

    void searchesAsChosen()
    {
        QFETCH(QString, category);
        QFETCH(QString, options);
        QFETCH(QString, text);
        Catalogue c;
        frmDBFind window(c.app.ctx, category);
        window.show();
        QVERIFY(c.app.ctx.OpenedFromSearch);
        QCOMPARE(child<QLabel>(window, "lblResult")->text(), "Результат поиска:");
        search(window, options.contains("folders"), options.contains("whole"), options.contains("comments"),
               text);
        const auto* list = child<QTreeWidget>(window, "lvFind");
        const bool tracks = category == "AD";
        QCOMPARE(QStringList({child<QComboBox>(window, "cmbList")->currentText(),
                              child<QRadioButton>(window, "optSearchMethod0")->text(),
                              cells(list->headerItem(), list->columnCount())})
                     .join(", "),
                 tracks ? QString("треков, Искать в треках, Название трека|№")
                 : options.contains("folders") ? QString("файлов/папок, Искать в файлах, Имя папки|№|Путь")
                                               : QString("файлов/папок, Искать в файлах, Имя файла|№|Путь"));
        // Tracks have no folders and no comments to choose.
        QCOMPARE(child(window, "optSearchMethod1")->isEnabled(), !tracks);
        QCOMPARE(child(window, "chCommentOnly")->isEnabled(), !tracks);
        QTEST(hits(window), "found");
        QTEST((QStringList{child<QLabel>(window, "lblResult")->text()} + c.app.prompter.texts()).join(" / "),
              "said");
        if (list->topLevelItemCount() == 0) {
            QCOMPARE(window.focusWidget(), child(window, "txtSearchText"));
            QCOMPARE(child<QLineEdit>(window, "txtSearchText")->selectedText(), text);
        } else {
            // The number of the hit on the row; the clear empties the four controls.
            child<QTreeWidget>(window, "lvFind")->setCurrentItem(list->topLevelItem(0));
            QCOMPARE(child<QLineEdit>(window, "txtNoFile")->text(), list->topLevelItem(0)->text(1));
            QTest::mouseClick(child(window, "imgButton2"), Qt::LeftButton);
            QCOMPARE(hits(window) + child<QLineEdit>(window, "txtNoFile")->text() +
                         child<QLineEdit>(window, "txtSearchText")->text() +
                         child<QLabel>(window, "lblResult")->text(),
                     "Результат поиска:");
        }
        QTest::keyClick(&window, Qt::Key_Escape);
        QVERIFY(!window.isVisible() && !c.app.ctx.OpenedFromSearch);
    }

    void numberColumnSortsByNumber()
    {
        Catalogue c;
        frmDBFind window(c.app.ctx);
        window.show();
        search(window, false, false, false, "rock");
        QHeaderView* header = child<QTreeWidget>(window, "lvFind")->header();
        test::clickHeader(header, 1);
        QCOMPARE(hits(window), "rock.doc|5|...; rock.txt|12 (2)|...; rock.mp3|12 (2)|\\Rock\\");
        test::clickHeader(header, 1);
        QCOMPARE(hits(window), "rock.txt|12 (2)|...; rock.mp3|12 (2)|\\Rock\\; rock.doc|5|...");
    }

    void hitsStreamInAndAStopKeepsThem()
    {
        Catalogue c;
        const int many = 100000;
        Db(c.app.ctx.MainDBPath)
            .exec("INSERT INTO Компьютер (Номер, Название, КодОписания, Дисков, ДискID1) VALUES (40, "
                  "'Много', 1, 1, 'M')");
        QStringList rows{"\\|\\|"};
        for (int i = 0; i < many; ++i) {
            rows.append(QString("файл %1.bin|\\|").arg(i));
        }
        c.list(ContentsKind::Files, "M", rows);
        frmDBFind window(c.app.ctx);
        window.show();
        auto* list = child<QTreeWidget>(window, "lvFind");
        auto* button = child<QPushButton>(window, "imgButton1");
        // The window has its events back while the hits come in, batch by batch.
        search(window, false, false, false, "файл", false);
        QVERIFY(window.searching());
        QCOMPARE(button->text(), "Остановить");
        QTRY_VERIFY_WITH_TIMEOUT(!window.searching(), 20000);
        QCOMPARE(list->topLevelItemCount(), many);
        QVERIFY(window.batchesShown() > 1);
        QCOMPARE(button->text(), "Найти");
        // Stopped at once, and stopped once something has come: the search ends short or not,
        // what came stays and is counted, and nothing is said.
        for (const bool atOnce : {true, false}) {
            QTest::keyClick(child(window, "txtSearchText"), Qt::Key_Return);
            while (!atOnce && window.searching() && list->topLevelItemCount() == 0) {
                QApplication::processEvents();
            }
            const int before = list->topLevelItemCount();
            QTest::mouseClick(button, Qt::LeftButton);
            QTRY_VERIFY_WITH_TIMEOUT(!window.searching(), 20000);
            const int shown = list->topLevelItemCount();
            QVERIFY2(atOnce ? shown < many : shown >= before && before > 0,
                     qPrintable(QString::number(shown)));
            QCOMPARE(child<QLabel>(window, "lblResult")->text(), resultLine(window.request(), shown));
            QVERIFY(c.app.prompter.texts().isEmpty());
        }
    }

    void hitOpensItsListAtTheFoundPlace_data()
    {
        // The hit `hit` of `text` opened by Enter or a double click: what its list shows.
        test::addColumns<QString>({"category", "text", "hit", "how", "state"});
        const auto row = test::addRow<QString, QString, QString, QString, QString>;
        row("file of disc 2", "PC", "rock", "rock.mp3", "double click",
            "frmFileList / 2 / Rock / rock.mp3 / rock.mp3");
        row("file at the root", "PC", "ёлка", "Ёлка.txt", "Enter",
            "frmFileList / 1 / ... / Ёлка.txt / Ёлка.txt");
        row("file far down", "PC", "запись 199", "запись 199.dat", "double click",
            "frmFileList / 1 / Архив / запись 199.dat / запись 199.dat");
        row("folder", "PC folders", "музыка", "\\Музыка\\", "double click",
            "frmFileList / 1 / Музыка / Группа крови.mp3 / ");
        row("track of disc 2", "AD", "звезда", "Звезда", "double click", "frmTrackList / 2 / Звезда /  / ");
        row("track far down", "AD", "песня 150", "Песня 150", "Enter", "frmTrackList / 1 / Песня 150 /  / ");
    }

    void hitOpensItsListAtTheFoundPlace()
    {
        QFETCH(QString, category);
        QFETCH(QString, text);
        QFETCH(QString, hit);
        QFETCH(QString, how);
        Catalogue c;
        frmDBFind window(c.app.ctx, category.section(' ', 0, 0));
        window.show();
        search(window, category.endsWith("folders"), false, false, text);
        QString state;
        c.app.prompter.handleModal([&](QDialog& dialog) {
            state = listState(dialog, c.app.ctx);
            return 0;
        });
        auto* list = child<QTreeWidget>(window, "lvFind");
        QTreeWidgetItem* item = list->findItems(hit, Qt::MatchExactly).value(0);
        QVERIFY(item);
        if (how == "Enter") {
            list->setCurrentItem(item);
            QTest::keyClick(list, Qt::Key_Return);
        } else {
            // A double click: the press and release of its first click, then the second.
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(item).center());
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(item).center());
        }
        QTEST(state, "state");
    }

    void goneDiscOrDamagedDatabaseIsToldAndTheWindowGoesOn()
    {
        Catalogue c;
        frmDBFind window(c.app.ctx);
        window.show();
        search(window, false, false, false, "rock");
        Db(c.app.ctx.MainDBPath).exec("DELETE FROM Компьютер WHERE Номер = 5");
        auto* list = child<QTreeWidget>(window, "lvFind");
        list->setCurrentItem(list->findItems("rock.doc", Qt::MatchExactly).value(0));
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(c.app.prompter.texts(), QStringList{"Диск № 5 не найден."});

        test::writeFile(c.app.ctx.FilesDBPath, QByteArray(4096, 'x'));
        search(window, false, false, false, "rock");
        QCOMPARE(c.app.prompter.shown.size(), 2);
        QVERIFY(c.app.prompter.texts().last().startsWith("ОШИБКА."));
        QVERIFY(test::readFile(c.app.file("bugreport.log")).contains("frmDBFind, ReadyToFindFile()"));
        QCOMPARE(child<QLabel>(window, "lblResult")->text() +
                     child<QPushButton>(window, "imgButton1")->text(),
                 "Результат поиска:Найти");
        QVERIFY(window.isVisible());
    }

    void mainWindowOpensTheSearch()
    {
        Catalogue c;
        frmMain main(c.app.ctx);
        main.AddListbars();
        // The menu, the two logos' menus and the vinora panel's item.
        for (const QString& command :
             QStringList{"ID_DB_Search", "ID_QuickADFind", "ID_QuickPCFind", "Поиск"}) {
            QString shown;
            c.app.prompter.handleModal([&](QDialog& dialog) {
                shown = dialog.objectName() + ' ' + child<QComboBox>(dialog, "cmbList")->currentText();
                return 0;
            });
            if (command.startsWith("ID_")) {
                QVERIFY(main.action(command)->isEnabled());
                main.action(command)->trigger();
            } else {
                QVERIFY(
                    child<QListWidget>(main, "g3")->findItems(command, Qt::MatchExactly).value(0)->flags() &
                    Qt::ItemIsEnabled);
                main.listBarItemClicked("g3", command);
            }
            QCOMPARE(shown, command == "ID_QuickADFind" ? QString("frmDBFind треков")
                                                        : QString("frmDBFind файлов/папок"));
            QVERIFY(!c.app.ctx.OpenedFromSearch);
        }
    }
};

VINORA_TEST_MAIN(tst_dbfind)
#include "tst_dbfind.moc"
