#include "../cddb/FakeCddbServer.h"
#include "../recognition/DiscFixtures.h"
#include "catalogue/frmCatalogue.h"
#include "contents/CdPlayerIni.h"
#include "contents/TrackListStore.h"
#include "contents/frmTrackList.h"
#include "contents/frmTrackListOption.h"
#include "frame/Cp1251.h"
#include "frame/IniFile.h"
#include "recognition/Drives.h"
#include "recognition/VolumeIdentity.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "store/Schema.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"
#include "support/Widgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>
#include <QTimer>

using namespace vinora;

namespace {

using Rows = QList<QVariant>; // the Название column of a list, Null as an invalid QVariant

// An audio catalogue with disc № 7, a set of two discs by "Исполнитель", album "Альбом".
struct Tracks
{
    test::TestApp app;

    Tracks()
    {
        Reanimator(app.ctx, 0);
        Db db(app.ctx.MainDBPath);
        db.exec("INSERT INTO Аудио (Номер, Название, Альбом, Дисков, КодСтиля) "
                "VALUES (7, 'Исполнитель', 'Альбом', 2, 1)");
    }
    // Puts a disc image in the drive; its list id comes back.
    QString insert(const QString& image)
    {
        addVirtualDrive(app.ctx.ini(), image);
        setChosenDrive(app.ctx.ini(), image);
        return QString::number(readVolumeInfo(image).serial, 16).toUpper();
    }
    // A list made by hand for disc 1 of № 7.
    void makeList(const QString& id, const Rows& names, const Rows& comments = {})
    {
        {
            Db tracks(app.ctx.TracksDBPath);
            ContentsLists(tracks, ContentsKind::Tracks).create(id);
        }
        writeTrackNames(app.ctx, id, names);
        Db tracks(app.ctx.TracksDBPath);
        for (int i = 0; i < comments.size(); ++i) {
            tracks.exec("UPDATE Треки SET Комментарий = ? WHERE ДискID = ? AND Номер = ?",
                        {comments[i], id, i + 1});
        }
        Db db(app.ctx.MainDBPath);
        db.exec("UPDATE Аудио SET ДискID1 = ?", {id});
        app.ctx.DiscIDSlots[0] = id;
    }
    std::unique_ptr<frmTrackList> open()
    {
        auto list = std::make_unique<frmTrackList>(app.ctx, 7, "Исполнитель", "Альбом", 2);
        list->show();
        return list;
    }
    QVariant disc(const QString& field) const
    {
        return Db(app.ctx.MainDBPath).scalar("SELECT " + quoted(field) + " FROM Аудио WHERE Номер = 7");
    }
    Rows stored(const QString& id, const QString& field = "Название") const
    {
        Rows rows;
        for (const StoredTrack& track : readTrackList(app.ctx, id)) {
            rows.append(field == "Название" ? track.name : track.comment);
        }
        return rows;
    }
    bool listExists(const QString& id) const
    {
        Db tracks(app.ctx.TracksDBPath);
        return ContentsLists(tracks, ContentsKind::Tracks).exists(id);
    }
    QString cdPlayer(const QString& section, const QString& key) const
    {
        return cdPlayerIni(app.ctx).read(section, key, 256);
    }
};

using test::child;
using test::click;

// Replaces the text of a field key by key, as the user types it.
void retype(QLineEdit* field, const QString& text)
{
    field->setFocus();
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    test::typeText(field, text);
}

// The options dialog as the user meets it: shown, boxes ticked by clicks, then the start.
std::function<int(QDialog&)> tickAndStart(const QStringList& ticks)
{
    return [ticks](QDialog& dialog) {
        dialog.show();
        for (const QString& tick : ticks) {
            click(dialog, tick);
        }
        click(dialog, "cmdOK");
        return dialog.isVisible() ? -1 : dialog.result(); // -1: the dialog stayed
    };
}

} // namespace

class tst_tracklists : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};
    int m_images = 0;

private slots:
    // A new list through the options dialog: each way gives its rows, the disc's count and
    // time on the catalogue row and, when asked, the section of cdplayer.ini.
    void makingAList_data()
    {
        QTest::addColumn<QList<int>>("sectors");
        QTest::addColumn<QStringList>("ticks");
        QTest::addColumn<QList<std::optional<QString>>>("answers");
        QTest::addColumn<QString>("iniBefore"); // %ID% stands for the disc's id
        QTest::addColumn<Rows>("rows");
        QTest::addColumn<int>("records");
        QTest::addColumn<QString>("time");
        QTest::addColumn<QStringList>("iniAfter"); // artist, title, numtracks, keys 0..; empty: no section

        QTest::newRow("nameless, saved to cdplayer.ini")
            << QList<int>{3000, 3000, 3000} << QStringList{"chTrackWithoutName", "chTrackSave"}
            << QList<std::optional<QString>>{} << QString() << Rows{"Запись 1", "Запись 2", "Запись 3"} << 3
            << "02:59" << QStringList{"Исполнитель", "Альбом", "3", "Запись 1", "Запись 2", "Запись 3"};
        QTest::newRow("nameless, not saved")
            << QList<int>{3000, 3000, 4575} << QStringList{"chTrackWithoutName"}
            << QList<std::optional<QString>>{} << QString() << Rows{"Запись 1", "Запись 2", "Запись 3"} << 3
            << "02:19" << QStringList{};
        QTest::newRow("by hand, a box cancelled in the middle")
            << QList<int>{3000, 3000, 3150} << QStringList{"chTrackSave"}
            << QList<std::optional<QString>>{"Утро", std::nullopt, QString(300, u'ж')} << QString()
            << Rows{"Утро", QVariant(), QString(255, u'ж')} << 3 << "02:00"
            << QStringList{"Исполнитель", "Альбом", "3", "Утро", "", QString(300, u'ж')};
        QTest::newRow("by hand, an empty answer")
            << QList<int>{4575, 4575} << QStringList{} << QList<std::optional<QString>>{"", "Вечер"}
            << QString() << Rows{QVariant(), "Вечер"} << 2 << "02:00" << QStringList{};
        QTest::newRow("from cdplayer.ini: numtracks counts, a missing key is '- нет -'")
            << QList<int>{1500, 1500, 1575} << QStringList{"chTrackImport"} << QList<std::optional<QString>>{}
            << QString("[%ID%]\r\nEntryType=1\r\nartist=A\r\ntitle=T\r\nnumtracks=4\r\n0=Один\r\n1=Два\r\n"
                       "3=Четыре\r\n")
            << Rows{"Один", "Два", "- нет -", "Четыре"} << 4 << "01:00"
            << QStringList{"A", "T", "4", "Один", "Два", "", "Четыре"};
    }
    void makingAList()
    {
        QFETCH(QList<int>, sectors);
        QFETCH(QStringList, ticks);
        QFETCH(QList<std::optional<QString>>, answers);
        QFETCH(QString, iniBefore);
        QFETCH(Rows, rows);
        QFETCH(int, records);
        QFETCH(QString, time);
        QFETCH(QStringList, iniAfter);

        Tracks t;
        const QString id = t.insert(m_discs.audioCue("make" + QString::number(++m_images), sectors));
        if (!iniBefore.isEmpty()) {
            test::writeFile(t.app.file("cdplayer.ini"), cp1251::encode(iniBefore.replace("%ID%", id)));
        }
        for (const std::optional<QString>& answer : answers) {
            t.app.prompter.answerInput(answer);
        }
        auto list = t.open();
        QVERIFY(list->trackNames().isEmpty());
        QVERIFY(!child(*list, "DBGrid")->isVisible());
        QVERIFY(!child(*list, "txtTrackName")->isEnabled());
        QString caption;
        bool listHidden = false;
        t.app.prompter.handleModal([&](QDialog& dialog) {
            caption = dialog.windowTitle();
            listHidden = !list->isVisible();
            return tickAndStart(ticks)(dialog);
        });
        click(*list, "imgButton1");

        QCOMPARE(caption, "Параметры сканирования диска № 7 (CD1)");
        QVERIFY(listHidden);
        QVERIFY(list->isVisible());
        QVERIFY(t.app.prompter.unanswered());
        QCOMPARE(t.stored(id), rows);
        QCOMPARE(list->trackNames().size(), rows.size());
        QCOMPARE(list->trackNames().first(), rows.first().toString());
        QVERIFY(child(*list, "DBGrid")->isVisible());
        QVERIFY(!child(*list, "imgButton1")->isEnabled());
        for (const QString& live :
             QStringList{"imgButton2", "imgButton3", "imgButton4", "txtTrackName", "cmdMakeChangeComm"}) {
            QVERIFY2(child(*list, live)->isEnabled(), qPrintable(live));
        }
        QCOMPARE(t.disc("ДискID1").toString(), id);
        QCOMPARE(t.disc("Записей1").toInt(), records);
        QCOMPARE(t.disc("Время1").toString(), time);
        QCOMPARE(t.app.ctx.DiscIDSlots[0], id);
        QVERIFY(!t.app.ctx.DialogDone);
        if (!ticks.contains("chTrackWithoutName") && !ticks.contains("chTrackImport")) {
            QCOMPARE(t.app.prompter.texts().first(),
                     "Введите название 1-го из " + QString::number(sectors.size()) + " треков:");
        }
        if (iniAfter.isEmpty()) {
            QVERIFY(!QFile::exists(t.app.file("cdplayer.ini")));
            return;
        }
        QCOMPARE(t.cdPlayer(id, "EntryType"), "1");
        QStringList section{t.cdPlayer(id, "artist"), t.cdPlayer(id, "title"), t.cdPlayer(id, "numtracks")};
        for (int i = 0; i < iniAfter.size() - 3; ++i) {
            section.append(cdPlayerIni(t.app.ctx).read(id, QString::number(i), 1024));
        }
        QCOMPARE(section, iniAfter);
    }

    // The window steps aside while the options are open, and is still open when they close.
    void windowStaysOpenAfterTheOptions()
    {
        Tracks t;
        const QString id = t.insert(m_discs.audioCue("aside", {1500, 1500}));
        frmTrackList list(t.app.ctx, 7, "Исполнитель", "Альбом", 2);
        bool hiddenMeanwhile = false;
        t.app.prompter.handleModal([&](QDialog& dialog) {
            hiddenMeanwhile = !list.isVisible();
            return tickAndStart({"chTrackWithoutName"})(dialog);
        });
        bool openAfterwards = false;
        QTimer::singleShot(0, &list, [&] {
            click(list, "imgButton1");
            QTimer::singleShot(50, &list, [&] {
                openAfterwards = list.isVisible();
                list.reject();
            });
        });
        list.exec();
        QVERIFY(hiddenMeanwhile);
        QVERIFY(openAfterwards);
        QCOMPARE(t.stored(id), (Rows{"Запись 1", "Запись 2"}));
    }

    // The ticks rule each other as the user clicks them.
    void tickRules_data()
    {
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QString>("ticked");  // the boxes ticked afterwards
        QTest::addColumn<QString>("enabled"); // of chCDDB cmbServer chTrackImport chTrackSave
        const auto row = [](const char* tag, const QStringList& clicks, const QString& ticked,
                            const QString& enabled) { QTest::newRow(tag) << clicks << ticked << enabled; };
        const QString all = "chCDDB cmbServer chTrackImport chTrackSave";
        row("at the start", {}, "", "chCDDB chTrackImport chTrackSave");
        row("CDDB", {"chCDDB"}, "chCDDB", all);
        row("CDDB off again", {"chCDDB", "chCDDB"}, "", "chCDDB chTrackImport chTrackSave");
        row("import", {"chTrackImport"}, "chTrackImport", "chCDDB chTrackImport");
        row("import after CDDB", {"chCDDB", "chTrackImport"}, "chTrackImport", "chCDDB chTrackImport");
        row("CDDB after import", {"chTrackImport", "chCDDB"}, "chCDDB", all);
        row("nameless", {"chCDDB", "chTrackWithoutName"}, "chCDDB chTrackWithoutName", "chTrackSave");
        row("nameless off again", {"chCDDB", "chTrackWithoutName", "chTrackWithoutName"}, "chCDDB", all);
        row("import after nameless", {"chTrackWithoutName", "chTrackImport"}, "chTrackWithoutName",
            "chTrackSave");
    }
    void tickRules()
    {
        QFETCH(QStringList, clicks);
        QFETCH(QString, ticked);
        QFETCH(QString, enabled);
        Tracks t;
        t.insert(m_discs.audioCue("ticks", {1500, 1500}));
        frmTrackListOption options(t.app.ctx, 7, 1, "Исполнитель", "Альбом");
        options.show();
        QCOMPARE(child<QLabel>(options, "lblInserCD")->text(), "Аудио диск");
        auto* servers = child<QComboBox>(options, "cmbServer");
        QCOMPARE(servers->count(), 7);
        QCOMPARE(servers->currentIndex(), 0);
        for (const QString& box : clicks) {
            click(options, box);
        }
        QStringList tickedNow{"chCDDB", "chTrackImport", "chTrackWithoutName", "chTrackSave"};
        tickedNow.removeIf(
            [&](const QString& name) { return !child<QCheckBox>(options, name)->isChecked(); });
        QStringList enabledNow{"chCDDB", "cmbServer", "chTrackImport", "chTrackSave"};
        enabledNow.removeIf([&](const QString& name) { return !child(options, name)->isEnabled(); });
        QCOMPARE(tickedNow.join(' '), ticked);
        QCOMPARE(enabledNow.join(' '), enabled);
    }

    // A data disc leaves only the nameless way, which the start then refuses.
    void dataDiscDisablesTheWays()
    {
        Tracks t;
        t.insert(m_discs.iso("data.iso", {"-J", "-V", "DATA"}));
        frmTrackListOption options(t.app.ctx, 7, 1, "Исполнитель", "Альбом");
        options.show();
        QCOMPARE(child<QLabel>(options, "lblInserCD")->text(), "Компьютерный диск");
        for (const QString& name : QStringList{"chCDDB", "cmbServer", "chTrackImport", "chTrackSave"}) {
            QVERIFY2(!child(options, name)->isEnabled(), qPrintable(name));
        }
        QVERIFY(child(options, "chTrackWithoutName")->isEnabled());
    }

    // Each refusal of the start is a message; the dialog stays, or closes after a clash, and no
    // list is left behind.
    void refusals_data()
    {
        QTest::addColumn<QString>("disc"); // "iso", "owned", "unknown" (to cdplayer.ini) or "none"
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("stays");
        QTest::newRow("no audio disc")
            << QString("iso")
            << "Вставьте Аудио диск в устройство для чтения компакт-дисков и повторите операцию." << true;
        QTest::newRow("a disc of another set")
            << QString("owned") << "Серийный номер этого диска совпадает с уже существующим серийным номером!"
            << false;
        QTest::newRow("import of an unknown disc")
            << QString("unknown") << "Информация о этом диске отсутствует в файле cdplayer.ini!" << true;
        QTest::newRow("no drive") << QString("none") << "Устройство для чтения компакт-дисков не найдено!"
                                  << true;
    }
    void refusals()
    {
        QFETCH(QString, disc);
        QFETCH(QString, message);
        QFETCH(bool, stays);
        if (disc == "none" && !physicalDrives().isEmpty()) {
            QSKIP("this machine has an optical drive");
        }
        Tracks t;
        QString id;
        if (disc == "iso") {
            t.insert(m_discs.iso("refused.iso", {"-J"}));
        } else if (disc == "unknown") {
            id = t.insert(m_discs.audioCue("unknown", {1500, 1500}));
            test::writeFile(t.app.file("cdplayer.ini"), "[ABC]\r\nnumtracks=1\r\n0=x\r\n");
        } else if (disc == "owned") {
            id = t.insert(m_discs.audioCue("owned", {1500, 1575}));
            Db db(t.app.ctx.MainDBPath);
            db.exec("INSERT INTO Аудио (Номер, Название, Дисков, КодСтиля, ДискID1) VALUES (8, 'Другой', 1, "
                    "1, ?)",
                    {id});
            Db tracks(t.app.ctx.TracksDBPath);
            ContentsLists(tracks, ContentsKind::Tracks).create(id);
            tracks.exec("INSERT INTO Треки (ДискID, Номер, Название) VALUES (?, 1, 'Чужой')", {id});
        }
        auto list = t.open();
        int result = 0;
        t.app.prompter.handleModal([&](QDialog& dialog) {
            result = tickAndStart(
                {disc == "unknown" ? QString("chTrackImport") : QString("chTrackWithoutName")})(dialog);
            return result;
        });
        click(*list, "imgButton1");
        QCOMPARE(t.app.prompter.texts().last(), message);
        QCOMPARE(t.app.prompter.shown.last().style, MessageStyle::Exclamation);
        QCOMPARE(result, stays ? -1 : int(QDialog::Rejected));
        QVERIFY(t.disc("ДискID1").isNull());
        QVERIFY(child(*list, "imgButton1")->isEnabled());
        QVERIFY(list->isVisible());
        QVERIFY(list->trackNames().isEmpty());
        if (disc == "owned") {
            QCOMPARE(t.stored(id), Rows{"Чужой"}); // the other set's list is untouched
        } else if (!id.isEmpty()) {
            QVERIFY(!t.listExists(id));
        }
    }

    // Enter in the name box stores the cleaned name and goes on to the next track; after the
    // last track it goes back to the first.
    void typingNames_data()
    {
        QTest::addColumn<int>("key"); // the key that picks the row: Home or End
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("row");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<int>("next");
        QTest::newRow("first goes to the second")
            << int(Qt::Key_Home) << "Рассвет" << 0 << QVariant("Рассвет") << 1;
        QTest::newRow("last wraps to the first")
            << int(Qt::Key_End) << "Закат" << 2 << QVariant("Закат") << 0;
        QTest::newRow("quotes and brackets cleaned")
            << int(Qt::Key_Home) << "Он сказал \"да\" [live]" << 0 << QVariant("Он сказал 'да' (live)") << 1;
        QTest::newRow("empty is Null") << int(Qt::Key_End) << "" << 2 << QVariant() << 0;
    }
    void typingNames()
    {
        QFETCH(int, key);
        QFETCH(QString, typed);
        QFETCH(int, row);
        QFETCH(QVariant, stored);
        QFETCH(int, next);
        Tracks t;
        t.makeList("1A2B", {"Первый", "Второй", "Третий"}, {"к1", QVariant(), "к3"});
        auto list = t.open();
        auto* grid = child<QTableWidget>(*list, "DBGrid");
        auto* name = child<QLineEdit>(*list, "txtTrackName");
        auto* comment = child<QLineEdit>(*list, "txtComment");
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key(key));
        QCOMPARE(list->currentTrack(), row);
        QCOMPARE(comment->text(), row == 0 ? "к1" : "к3");
        retype(name, typed);
        QTest::keyClick(name, Qt::Key_Return);

        Rows expected{"Первый", "Второй", "Третий"};
        expected[row] = stored;
        QCOMPARE(t.stored("1A2B"), expected);
        QCOMPARE(list->trackNames()[row], stored.toString());
        QCOMPARE(list->currentTrack(), next);
        QCOMPARE(name->text(), expected[next].toString());
        QCOMPARE(name->selectedText(), name->text());
        QCOMPARE(list->focusWidget(), name);
        QVERIFY(t.app.prompter.shown.isEmpty());
    }

    // Enter in the comment box stores it (50 characters at most) and says so.
    void comments_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QVariant>("stored");
        QTest::newRow("a comment") << "Живой [концерт]" << QVariant("Живой (концерт)");
        QTest::newRow("cut to 50 by the box") << QString(60, u'ю') << QVariant(QString(50, u'ю'));
        QTest::newRow("empty is Null") << "" << QVariant();
    }
    void comments()
    {
        QFETCH(QString, typed);
        QFETCH(QVariant, stored);
        Tracks t;
        t.makeList("C0", {"Первый", "Второй"}, {"старый", "старый"});
        auto list = t.open();
        auto* grid = child<QTableWidget>(*list, "DBGrid");
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_End);
        auto* comment = child<QLineEdit>(*list, "txtComment");
        retype(comment, typed);
        QTest::keyClick(comment, Qt::Key_Enter);
        QCOMPARE(t.stored("C0", "Комментарий"), (Rows{"старый", stored}));
        QCOMPARE(t.app.prompter.texts(), QStringList{"Комментарий к треку 'Второй' успешно изменен."});
        QCOMPARE(t.app.prompter.shown.last().style, MessageStyle::Information);
        QCOMPARE(list->currentTrack(), 1); // a comment does not walk on
        QCOMPARE(t.stored("C0"), (Rows{"Первый", "Второй"}));
    }

    // A letter typed in the grid goes to the next track whose name begins with it.
    void firstLetterSearch_data()
    {
        QTest::addColumn<QStringList>("keys");
        QTest::addColumn<QList<int>>("rows"); // the current row after each key
        QTest::newRow("same letter goes on, then round")
            << QStringList{"а", "а", "а", "а"} << QList<int>{0, 2, 5, 0};
        QTest::newRow("capital Cyrillic as small") << QStringList{"Г", "Г"} << QList<int>{4, 4};
        QTest::newRow("Latin") << QStringList{"g"} << QList<int>{3};
        QTest::newRow("a new letter starts at the top")
            << QStringList{"а", "а", "б", "а"} << QList<int>{0, 2, 1, 0};
        QTest::newRow("digit") << QStringList{"1"} << QList<int>{6};
        QTest::newRow("no such name: the row stays") << QStringList{"б", "я"} << QList<int>{1, 1};
    }
    void firstLetterSearch()
    {
        QFETCH(QStringList, keys);
        QFETCH(QList<int>, rows);
        Tracks t;
        t.makeList("5EA", {"Альфа", "бета", "астра", "Gamma", "гамма", "Ария", "1999"});
        auto list = t.open();
        auto* grid = child<QTableWidget>(*list, "DBGrid");
        grid->setFocus();
        QList<int> visited;
        for (const QString& key : keys) {
            test::typeText(grid, key);
            visited.append(list->currentTrack());
        }
        QCOMPARE(visited, rows);
        QCOMPARE(child<QLineEdit>(*list, "txtTrackName")->text(), list->trackNames()[rows.last()]);
    }

    // The list goes to cdplayer.ini after a question: code page 1251, the comments left out,
    // keys of an earlier, longer list kept.
    void savingToCdPlayer()
    {
        Tracks t;
        test::writeFile(t.app.file("cdplayer.ini"),
                        "[Other]\r\nartist=x\r\n[BEEF]\r\nEntryType=1\r\nartist=old\r\nnumtracks=5\r\n"
                        "0=a\r\n1=b\r\n2=c\r\n3=d\r\n4=e\r\n");
        t.makeList("BEEF", {"Жёлтый", QVariant(), "Синий"}, {"без комментария", QVariant(), QVariant()});
        auto list = t.open();
        const QByteArray before = test::readFile(t.app.file("cdplayer.ini"));

        t.app.prompter.answer(Answer::No);
        click(*list, "imgButton4");
        QCOMPARE(
            t.app.prompter.texts(),
            QStringList{
                "Вы уверены, что хотите сохранить информацию о треках диска № 7 в файл 'cdplayer.ini'?"});
        QCOMPARE(t.app.prompter.shown.last().style, MessageStyle::YesNoQuestion);
        QCOMPARE(test::readFile(t.app.file("cdplayer.ini")), before);

        t.app.prompter.answer(Answer::Yes);
        click(*list, "imgButton4");
        QCOMPARE(t.app.prompter.texts().last(), "Данные диска № 7 успешно сохранены в файле 'cdplayer.ini'.");
        QCOMPARE(t.app.prompter.shown.last().style, MessageStyle::Information);
        const QByteArray bytes = test::readFile(t.app.file("cdplayer.ini"));
        // "artist=Исполнитель" and "0=Жёлтый" in code page 1251
        QVERIFY(bytes.contains(QByteArray("artist=").append(QByteArray::fromHex("c8f1efeeebede8f2e5ebfc"))));
        QVERIFY(bytes.contains(QByteArray("0=").append(QByteArray::fromHex("c6b8ebf2fbe9"))));
        QVERIFY(!bytes.contains("\xEA\xEE\xEC\xEC")); // "комм"
        QCOMPARE(t.cdPlayer("BEEF", "EntryType"), "1");
        QCOMPARE(t.cdPlayer("BEEF", "title"), "Альбом");
        QCOMPARE(t.cdPlayer("BEEF", "numtracks"), "3");
        QCOMPARE(t.cdPlayer("BEEF", "1"), "");
        QCOMPARE(t.cdPlayer("BEEF", "2"), "Синий");
        QCOMPARE(t.cdPlayer("BEEF", "3"), "d");
        QCOMPARE(t.cdPlayer("BEEF", "4"), "e");
        QCOMPARE(t.cdPlayer("Other", "artist"), "x");
    }

    // Delete asks first; re-create deletes without another question and makes the list anew.
    void deletingAndRecreating_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<QString>("question");
        QTest::addColumn<Rows>("rows"); // the list afterwards; empty: none
        const QString deletion = "Вы действительно хотите удалить информация о треках диска № 7?";
        const QString recreation = "Текущий список треков будет удален! Продолжить?";
        QTest::newRow("delete, no") << QString("imgButton2") << Answer::No << deletion << Rows{"Старый"};
        QTest::newRow("delete, yes") << QString("imgButton2") << Answer::Yes << deletion << Rows{};
        QTest::newRow("re-create, no") << QString("imgButton3") << Answer::No << recreation << Rows{"Старый"};
        QTest::newRow("re-create, yes")
            << QString("imgButton3") << Answer::Yes << recreation << Rows{"Запись 1", "Запись 2"};
    }
    void deletingAndRecreating()
    {
        QFETCH(QString, button);
        QFETCH(Answer, answer);
        QFETCH(QString, question);
        QFETCH(Rows, rows);
        Tracks t;
        const QString id = t.insert(m_discs.audioCue("recreate", {1500, 3075}));
        t.makeList(id, {"Старый"});
        auto list = t.open();
        QCOMPARE(list->trackNames(), QStringList{"Старый"});
        QVERIFY(!child(*list, "imgButton1")->isEnabled());
        t.app.prompter.answer(answer);
        if (rows.size() == 2) {
            t.app.prompter.handleModal(tickAndStart({"chTrackWithoutName"}));
        }
        click(*list, button);
        QCOMPARE(t.app.prompter.texts().first(), question);
        QCOMPARE(t.app.prompter.shown.first().style,
                 button == "imgButton2" ? MessageStyle::YesNoQuestion : MessageStyle::YesNoExclamation);
        QCOMPARE(t.stored(id), rows);
        QCOMPARE(t.listExists(id), !rows.isEmpty());
        QCOMPARE(t.disc("ДискID1").toString(), rows.isEmpty() ? QString() : id);
        QCOMPARE(list->trackNames().size(), rows.size());
        QCOMPARE(child(*list, "DBGrid")->isVisible(), !rows.isEmpty());
        QCOMPARE(child(*list, "imgButton1")->isEnabled(), rows.isEmpty());
        QCOMPARE(child(*list, "imgButton4")->isEnabled(), !rows.isEmpty());
        QCOMPARE(child(*list, "txtTrackName")->isEnabled(), !rows.isEmpty());
        if (rows.size() == 2) {
            QCOMPARE(t.disc("Записей1").toInt(), 2);
            QCOMPARE(t.disc("Время1").toString(), "01:00");
        }
    }

    // The CDDB way, for the second disc of the set: the server's names become the list and the
    // existing catalogue row gets the disc's place; a disc the server does not know leaves
    // nothing behind.
    void cddbWay_data()
    {
        QTest::addColumn<bool>("known");
        QTest::addColumn<bool>("saveToIni");
        QTest::newRow("known, database only") << true << false;
        QTest::newRow("known, and cdplayer.ini") << true << true;
        QTest::newRow("not known") << false << false;
    }
    void cddbWay()
    {
        QFETCH(bool, known);
        QFETCH(bool, saveToIni);
        Tracks t;
        test::FakeCddbServer server{VINORA_TEST_DATA "/cddb"};
        QVERIFY(server.start());
        if (!known) {
            server.reply("cddb query", "202 No match for disc ID 12025d03.\r\n");
        }
        t.app.ctx.ini().write("CDDBServers", "Server2", "127.0.0.1:" + QString::number(server.port()));
        t.app.ctx.ini().write("Option", "ServerCDDB", "1");
        t.app.ctx.ini().write("Option", "ServerTimeout", "5");
        const QString id = t.insert(m_discs.audioCue("country", {11993, 19539, 13880}));
        t.app.ctx.CatalogueQueryFilter = "Название LIKE 'И*'"; // the catalogue's own filter
        auto list = t.open();
        auto* discs = child<QComboBox>(*list, "cmbCountCD");
        discs->setFocus();
        QTest::keyClick(discs, Qt::Key_Down);

        QStringList handedOver;
        bool optionsHidden = false;
        QString server2;
        t.app.prompter.handleModal([&](QDialog& dialog) {
            dialog.show();
            click(dialog, "chCDDB");
            if (saveToIni) {
                click(dialog, "chTrackSave");
            }
            server2 = child<QComboBox>(dialog, "cmbServer")->currentText();
            t.app.prompter.handleModal([&](QDialog& query) {
                optionsHidden = !dialog.isVisible();
                handedOver << t.app.ctx.CatalogueQueryFilter << QString::number(t.app.ctx.CDDBUpdateRow)
                           << QString::number(t.app.ctx.LastSavedNumber)
                           << QString::number(t.app.ctx.CDDBDiscInSet)
                           << QString::number(t.app.ctx.CDDBSaveToIni);
                return query.exec();
            });
            click(dialog, "cmdOK");
            return dialog.result();
        });
        click(*list, "imgButton1");

        QCOMPARE(server2, "2: 127.0.0.1:" + QString::number(server.port()));
        QVERIFY(optionsHidden);
        QCOMPARE(handedOver, (QStringList{"cddb:2", "1", "7", "2", saveToIni ? "1" : "0"}));
        QCOMPARE(t.app.ctx.CatalogueQueryFilter, "Название LIKE 'И*'");
        QVERIFY(!t.app.ctx.CDDBUpdateRow);
        QCOMPARE(t.app.ctx.CDDBDiscInSet, 0);
        QVERIFY(!t.app.ctx.DialogDone);
        QCOMPARE(Db(t.app.ctx.MainDBPath).scalar("SELECT count(*) FROM Аудио").toInt(), 1);
        QVERIFY(t.disc("ДискID1").isNull());
        if (!known) {
            QVERIFY(!t.app.prompter.texts().isEmpty());
            QVERIFY(!t.listExists(id));
            QVERIFY(t.disc("ДискID2").isNull());
            QVERIFY(child(*list, "imgButton1")->isEnabled());
            QVERIFY(list->trackNames().isEmpty());
            return;
        }
        const QStringList songs{"I'm Your Puppet", "Me And Jacky", "If You Don't Like Country"};
        QCOMPARE(t.app.prompter.texts(), QStringList{});
        QCOMPARE(list->trackNames(), songs);
        QCOMPARE(t.stored(id), (Rows{songs[0], songs[1], songs[2]}));
        QCOMPARE(t.disc("ДискID2").toString(), id);
        QCOMPARE(t.disc("Записей2").toInt(), 3);
        QCOMPARE(t.disc("Время2").toString(), "10:56");
        QCOMPARE(t.disc("Название").toString(), "Исполнитель"); // the row keeps its own names
        QCOMPARE(t.app.ctx.DiscIDSlots[1], id);
        QVERIFY(!child(*list, "imgButton1")->isEnabled());
        QCOMPARE(QFile::exists(t.app.file("cdplayer.ini")), saveToIni);
        if (saveToIni) {
            QCOMPARE(t.cdPlayer(id, "numtracks"), "3");
            QCOMPARE(t.cdPlayer(id, "2"), songs[2]);
        }
    }

    // A file or a database that refuses is told, with the routine in the fault log, and the
    // window goes on.
    void refusedFilesAreTold_data()
    {
        QTest::addColumn<QString>("refusing");
        QTest::addColumn<QString>("place");
        QTest::newRow("cdplayer.ini cannot be written")
            << QString("cdplayer.ini") << "frmTrackList, cmdSave()";
        QTest::newRow("damaged tracks database")
            << QString("tracks database") << "frmTrackList, ViewTrackList()";
    }
    void refusedFilesAreTold()
    {
        QFETCH(QString, refusing);
        QFETCH(QString, place);
        Tracks t;
        t.makeList("F00D", {"Один"});
        std::unique_ptr<frmTrackList> list;
        if (refusing == "cdplayer.ini") {
            list = t.open();
            t.app.prompter.answer(Answer::Yes);
            IniFile::failWriteForTests(1, ENOSPC);
            click(*list, "imgButton4");
            IniFile::failWriteForTests(0, 0);
            QVERIFY(!QFile::exists(t.app.file("cdplayer.ini")));
        } else {
            test::writeFile(t.app.ctx.TracksDBPath, "not a database");
            list = t.open();
            QVERIFY(list->trackNames().isEmpty());
            QVERIFY(!child(*list, "DBGrid")->isVisible());
        }
        QCOMPARE(t.app.prompter.shown.last().style, MessageStyle::Stop);
        QVERIFY(t.app.prompter.texts().last().startsWith("ОШИБКА."));
        QVERIFY(t.app.prompter.texts().last().contains("Действие не выполнено."));
        QVERIFY(cp1251::decode(test::readFile(t.app.file("bugreport.log"))).contains(place));
        QVERIFY(child(*list, "imgButton0")->isEnabled());
    }

    // The set's second disc has a list of its own, chosen in the disc box.
    void discsOfASet()
    {
        Tracks t;
        t.makeList("D1", {"Первый диск"});
        {
            Db tracks(t.app.ctx.TracksDBPath);
            ContentsLists(tracks, ContentsKind::Tracks).create("D2");
        }
        writeTrackNames(t.app.ctx, "D2", {"Второй диск", "ещё"});
        t.app.ctx.DiscIDSlots[1] = "D2";
        auto list = t.open();
        auto* discs = child<QComboBox>(*list, "cmbCountCD");
        QVERIFY(discs->isEnabled());
        QCOMPARE(discs->count(), 2);
        QCOMPARE(list->trackNames(), QStringList{"Первый диск"});
        QCOMPARE(t.app.ctx.CurrentDiscID, "D1");
        discs->setFocus();
        QTest::keyClick(discs, Qt::Key_Down);
        QCOMPARE(t.app.ctx.CurrentDiscID, "D2");
        QCOMPARE(list->trackNames(), (QStringList{"Второй диск", "ещё"}));
        QCOMPARE(child<QLineEdit>(*list, "txtTrackName")->text(), "Второй диск");
        t.app.ctx.DiscIDSlots[1].clear();
        QTest::keyClick(discs, Qt::Key_Up);
        QTest::keyClick(discs, Qt::Key_Down);
        QCOMPARE(t.app.ctx.CurrentDiscID, "");
        QCOMPARE(child<QLineEdit>(*list, "txtTrackName")->text(), "");
        QVERIFY(!child(*list, "DBGrid")->isVisible());
        QVERIFY(child(*list, "imgButton1")->isEnabled());
        QVERIFY(!child(*list, "imgButton2")->isEnabled());
        QVERIFY(!child(*list, "cmdMakeChange")->isEnabled());
    }

    // The audio catalogue opens the track list of the disc at hand by its list button, and by
    // a double click when DblClick is 1; a list made there shows on the catalogue row.
    void catalogueOpensTheTrackList_data()
    {
        QTest::addColumn<bool>("doubleClick");
        QTest::newRow("list button") << false;
        QTest::newRow("double click, DblClick=1") << true;
    }
    void catalogueOpensTheTrackList()
    {
        QFETCH(bool, doubleClick);
        Tracks t;
        const QString id = t.insert(m_discs.audioCue("catalog", {1500, 1500, 1500}));
        Db(t.app.ctx.MainDBPath).exec("UPDATE Аудио SET ДискID2 = 'OLD2'");
        if (doubleClick) {
            t.app.ctx.ini().write("Option", "DblClick", "1");
        }
        frmCatalogue catalogue(t.app.ctx, Category::Audio);
        catalogue.show();
        QCOMPARE(catalogue.rowCount(), 1);
        QVERIFY(child(catalogue, "imgButton6")->isEnabled());
        QStringList seen;
        t.app.prompter.handleModal([&](QDialog& dialog) {
            auto* list = qobject_cast<frmTrackList*>(&dialog);
            if (!list) {
                return 0;
            }
            seen << child<QLabel>(dialog, "lblNumber")->text() << child<QLabel>(dialog, "lblName")->text()
                 << child<QLabel>(dialog, "lblAlbum")->text()
                 << QString::number(child<QComboBox>(dialog, "cmbCountCD")->count())
                 << t.app.ctx.DiscIDSlots[0] << t.app.ctx.DiscIDSlots[1];
            t.app.prompter.handleModal(tickAndStart({"chTrackWithoutName"}));
            list->cmdCreate();
            seen << list->trackNames().join(',');
            return 0;
        });
        if (doubleClick) {
            auto* grid = child<QTableView>(catalogue, "DBGrid");
            const QPoint at = grid->visualRect(grid->model()->index(0, 0)).center();
            QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, at);
            QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, at);
        } else {
            click(catalogue, "imgButton6");
        }
        QCOMPARE(seen,
                 (QStringList{"7", "Исполнитель", "Альбом", "2", "", "OLD2", "Запись 1,Запись 2,Запись 3"}));
        QCOMPARE(t.disc("ДискID1").toString(), id);
        QCOMPARE(child<QLineEdit>(catalogue, "txtTrecks")->text(), "3");
    }
};

VINORA_TEST_MAIN(tst_tracklists)
#include "tst_tracklists.moc"
