#include "../recognition/DiscFixtures.h"
#include "catalogue/DiscRecord.h"
#include "catalogue/frmAddCD.h"
#include "catalogue/frmAddInCatalogue.h"
#include "frame/Cp1251.h"
#include "recognition/Drives.h"
#include "recognition/Toc.h"
#include "recognition/VolumeIdentity.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/InfoStamp.h"
#include "store/Reanimator.h"
#include "store/Schema.h"
#include "support/DataRows.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QToolButton>

using namespace vinora;

namespace {

struct Editing
{
    test::TestApp app;
    Editing() { Reanimator(app.ctx, 0); }

    QVariant value(const QString& sql, const QVariantList& values = {})
    {
        return Db(app.ctx.MainDBPath).scalar(sql, values);
    }
    void exec(const QString& sql, const QVariantList& values = {})
    {
        Db(app.ctx.MainDBPath).exec(sql, values);
    }
    void addRow(Category category, int number, const QString& name)
    {
        const CatalogueKind& kind = catalogueKind(category);
        exec("INSERT INTO " + quoted(kind.info().table) + " (Номер, Название, Дисков, " +
                 quoted(kind.dictionaryKey) + ") VALUES (?, ?, 1, 1)",
             {number, name});
    }
};

void addCategories()
{
    QTest::addColumn<int>("category");
    QTest::newRow("audio") << int(Category::Audio);
    QTest::newRow("computer") << int(Category::Computer);
    QTest::newRow("DVD") << int(Category::Dvd);
}

template <typename T = QLineEdit> T* field(QWidget& dialog, const char* name)
{
    return dialog.findChild<T*>(QString::fromLatin1(name));
}

const char* dictionaryField(Category category)
{
    return category == Category::Audio      ? "txtStyle"
           : category == Category::Computer ? "txtDescription"
                                            : "txtGenre";
}

} // namespace

class tst_discediting : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};

private slots:
    void spinners_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("up");
        QTest::addColumn<QString>("result");
        const auto row = test::addRow<QString, QString, bool, QString>;
        row("year down at 0000", "year", "0000", false, "0000");
        row("year up at 9999", "year", "9999", true, "9999");
        row("year up", "year", "1999", true, "2000");
        row("tracks down at 00", "tracks", "00", false, "00");
        row("tracks up at 99", "tracks", "99", true, "99");
        row("tracks up", "tracks", "09", true, "10");
        row("discs up at 6", "discs", "6", true, "6");
        row("discs down at 1", "discs", "1", false, "1");
        row("time down at 00:00", "time", "00:00", false, "00:00");
        row("time seconds run to 99", "time", "00:59", true, "00:60");
        row("time past 99 seconds", "time", "00:99", true, "01:00");
        row("time below 0 seconds", "time", "01:00", false, "00:99");
        row("time up at 99:99", "time", "99:99", true, "99:99");
    }

    void spinners()
    {
        QFETCH(QString, kind);
        QFETCH(QString, text);
        QFETCH(bool, up);
        const auto spin = kind == "year"     ? spinYear
                          : kind == "tracks" ? spinTracks
                          : kind == "discs"  ? spinDiscs
                                             : spinTime;
        QTEST(spin(text, up), "result");
    }

    void discCountRule()
    {
        QCOMPARE(discCount("0"), 1);
        QCOMPARE(discCount(""), 1);
        QCOMPARE(discCount("7"), 1);
        QCOMPARE(discCount("3"), 3);
    }

    void playingTime()
    {
        Toc toc;
        toc.tracks = {{1, 0, true}, {2, 4000, true}};
        toc.leadoutLsn = 127 * 75 - 150;         // 125 seconds of playing
        QCOMPARE(playingTimeText(toc), "02:03"); // seconds modulo 61, as always shown
        toc.leadoutLsn = 101 * 60 * 75;
        QCOMPARE(playingTimeText(toc), QString());
    }

    void addThroughTheEditor_data() { addCategories(); }
    void addThroughTheEditor()
    {
        QFETCH(int, category);
        const auto which = static_cast<Category>(category);
        const CatalogueKind& kind = catalogueKind(which);
        Editing e;
        e.app.ctx.AutoDetectTag = "ad:ABC123";
        frmAddInCatalogue editor(e.app.ctx, which, frmAddInCatalogue::Mode::Add, 5);
        QCOMPARE(field(editor, "txtYear")->text(), "2026");
        field(editor, "txtName")->setText("Имя \"в кавычках\" [1]");
        field(editor, dictionaryField(which))->setText(QString(50, u'ж'));
        if (which == Category::Audio) {
            field(editor, "txtCDs")->setText("2");
            field(editor, "txtTrack")->setText("12");
            field<QComboBox>(editor, "cmbCountCD")->setCurrentIndex(1);
            emit field<QComboBox>(editor, "cmbCountCD")->activated(1);
            field(editor, "txtTrack")->setText("07");
            field(editor, "txtTime")->setText("41:05");
        }
        editor.cmdAdd();
        QVERIFY(e.app.ctx.DialogDone);
        QCOMPARE(e.app.ctx.LastSavedNumber, qint16(5));
        const QString table = quoted(kind.info().table);
        QCOMPARE(e.value("SELECT Название FROM " + table + " WHERE Номер = 5").toString(),
                 "Имя 'в кавычках' (1)");
        QCOMPARE(e.value("SELECT d." + quoted(kind.dictionaryTable) + " FROM " + table + " t JOIN " +
                         quoted(kind.dictionaryTable) + " d USING (" + quoted(kind.dictionaryKey) + ")")
                     .toString(),
                 QString(50, u'ж'));
        QCOMPARE(e.value("SELECT ДискID1_d FROM " + table).toString(), "ABC123");
        QCOMPARE(e.value("SELECT ДатаЗаписи FROM " + table).toString(),
                 QDate::currentDate().toString(Qt::ISODate));
        Db db(e.app.ctx.MainDBPath);
        QCOMPARE(readStamp(db, kind.info().stampField), e.app.clock.today());
        QCOMPARE(e.app.ctx.AutoDetectTag.isEmpty(), which != Category::Audio);
        if (which == Category::Audio) {
            QCOMPARE(
                e.value("SELECT Записей1 || '/' || Записей2 || '/' || Время2 || '/' || Записей3 FROM Аудио")
                    .toString(),
                "12/7/41:05/0");
        }
    }

    void refusals_data() { addCategories(); }
    void refusals()
    {
        QFETCH(int, category);
        const auto which = static_cast<Category>(category);
        Editing e;
        frmAddInCatalogue editor(e.app.ctx, which, frmAddInCatalogue::Mode::Add, 1);
        editor.cmdAdd();
        QVERIFY(
            e.app.prompter.texts().last().endsWith("\nДанное поле является обязательным для заполнения."));
        field(editor, "txtName")->setText("X");
        field(editor, dictionaryField(which))->setText(QString(51, u'ж'));
        editor.cmdAdd();
        if (which == Category::Dvd) {
            QVERIFY(e.app.ctx.DialogDone); // no length test for genres; the name is cut to its field
        } else {
            QVERIFY(!e.app.ctx.DialogDone);
            QVERIFY(e.app.prompter.texts().last().endsWith("не должно быть длинее 50 символов!"));
        }
    }

    void reduction_data()
    {
        QTest::addColumn<int>("category");
        QTest::addColumn<bool>("withList");
        QTest::addColumn<QString>("answer"); // "-" when no question is expected
        QTest::newRow("audio, no list: no question") << int(Category::Audio) << false << "-";
        QTest::newRow("audio, list, No") << int(Category::Audio) << true << "No";
        QTest::newRow("audio, list, Yes") << int(Category::Audio) << true << "Yes";
        QTest::newRow("computer, list, Yes") << int(Category::Computer) << true << "Yes";
    }

    void reduction()
    {
        QFETCH(int, category);
        QFETCH(bool, withList);
        QFETCH(QString, answer);
        const auto which = static_cast<Category>(category);
        const CatalogueKind& kind = catalogueKind(which);
        const QString table = quoted(kind.info().table);
        Editing e;
        e.addRow(which, 8, "Сборник");
        e.exec("UPDATE " + table + " SET Дисков = 3, ДискID1 = 'L1', ДискID3 = ?",
               {withList ? QVariant("L3") : QVariant()});
        const QString listsPath =
            *kind.contents == ContentsKind::Tracks ? e.app.ctx.TracksDBPath : e.app.ctx.FilesDBPath;
        {
            Db lists(listsPath);
            ContentsLists(lists, *kind.contents).create("L3");
        }
        frmAddInCatalogue editor(e.app.ctx, which, frmAddInCatalogue::Mode::Change, 8);
        QCOMPARE(field(editor, "txtName")->text(), "Сборник");
        field(editor, "txtCDs")->setText("2");
        field(editor, dictionaryField(which))->setText("Совсем новый");
        if (answer != "-") {
            e.app.prompter.answer(answer == "Yes" ? Answer::Yes : Answer::No);
        }
        editor.cmdAdd();
        QVERIFY(e.app.prompter.unanswered());
        const bool saved = answer != "No";
        QCOMPARE(e.app.ctx.DialogDone, saved);
        QCOMPARE(e.value("SELECT Дисков FROM " + table).toInt(), saved ? 2 : 3);
        // A new dictionary name stays, even when the change was declined.
        QCOMPARE(e.value("SELECT COUNT(*) FROM " + quoted(kind.dictionaryTable) + " WHERE " +
                         quoted(kind.dictionaryTable) + " = 'Совсем новый'")
                     .toInt(),
                 1);
        Db lists(listsPath);
        QCOMPARE(ContentsLists(lists, *kind.contents).exists("L3"), !(withList && saved));
        if (withList && saved) {
            QVERIFY(e.value("SELECT ДискID3 FROM " + table).isNull());
            QCOMPARE(e.value("SELECT ДискID1 FROM " + table).toString(), "L1");
            QVERIFY(e.app.prompter.texts().last().startsWith(
                "Вы изменили общее число дисков c 3 на 2! Если для удаляемых"));
        }
    }

    void computerReductionAcrossDiscFive()
    {
        Editing e;
        e.addRow(Category::Computer, 3, "Шесть дисков");
        e.exec("UPDATE Компьютер SET Дисков = 6, ДискID6 = 'L6'");
        frmAddInCatalogue editor(e.app.ctx, Category::Computer, frmAddInCatalogue::Mode::Change, 3);
        field(editor, "txtCDs")->setText("4");
        e.app.prompter.answer(Answer::Yes);
        QVERIFY_THROWS_EXCEPTION(ProcessEnded, editor.cmdAdd());
        QVERIFY(cp1251::decode(test::readFile(e.app.file("bugreport.log")))
                    .contains("frmAddInCataloguePC, cmdAdd()"));
        QCOMPARE(e.value("SELECT Дисков FROM Компьютер").toInt(), 6);
    }

    void dvdSoundFormats_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QStringList>("checkedBefore");
        QTest::addColumn<QString>("toggle");
        QTest::addColumn<QString>("saved");
        const auto row = test::addRow<QString, QStringList, QString, QString>;
        row("none, one added", "", {}, "DTS", "5,");
        row("one dropped", "2,5,", {"Dolby Digital 5.1", "DTS"}, "DTS", "2,");
        row("added in dictionary order", "5,", {"DTS"}, "Dolby Digital 2.0", "1,5,");
        row("unknown code forgotten", "9,7,", {"Stereo"}, "Mono", "7,8,");
    }
    void dvdSoundFormats()
    {
        QFETCH(QString, stored);
        QFETCH(QStringList, checkedBefore);
        QFETCH(QString, toggle);
        QFETCH(QString, saved);
        Editing e;
        e.addRow(Category::Dvd, 3, "Фильм");
        e.exec("UPDATE DVD SET ФорматЗвука = ?", {stored});
        frmAddInCatalogue editor(e.app.ctx, Category::Dvd, frmAddInCatalogue::Mode::Change, 3);
        auto* formats = field<QListWidget>(editor, "lvSoundFormat");
        QStringList checked;
        for (int i = 0; i < formats->count(); ++i) {
            QListWidgetItem* item = formats->item(i);
            if (item->checkState() == Qt::Checked) {
                checked.append(item->text());
            }
            if (item->text() == toggle) {
                item->setCheckState(item->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
            }
        }
        QCOMPARE(checked, checkedBefore);
        editor.cmdAdd();
        QCOMPARE(e.value("SELECT ФорматЗвука FROM DVD").toString(), saved);
    }

    void pendingShiftRunsOnSave()
    {
        Editing e;
        e.addRow(Category::Dvd, 1, "A");
        e.addRow(Category::Dvd, 2, "B");
        e.addRow(Category::Dvd, 3, "C");
        e.app.ctx.ShiftStart = 2;
        frmAddInCatalogue editor(e.app.ctx, Category::Dvd, frmAddInCatalogue::Mode::Add, 2);
        field(editor, "txtName")->setText("New");
        editor.cmdAdd();
        QCOMPARE(e.app.ctx.ShiftStart, qint16(0));
        QCOMPARE(
            e.value("SELECT group_concat(Номер || Название, ' ') FROM (SELECT * FROM DVD ORDER BY Номер)")
                .toString(),
            "1A 2New 3B 4C");
    }

    void inputIsCutToWhatTheTableHolds_data()
    {
        QTest::addColumn<int>("category");
        test::addColumns<QString>({"box", "typed", "column", "stored"});
        const auto row = test::addRow<int, QString, QString, QString, QString>;
        const int audio = int(Category::Audio), computer = int(Category::Computer), dvd = int(Category::Dvd);
        row("audio title", audio, "txtName", QString(61, u'n'), "Название", QString(60, u'n'));
        row("audio album", audio, "txtAlbum", QString(70, u'a'), "Альбом", QString(60, u'a'));
        row("computer title", computer, "txtName", QString(61, u'n'), "Название", QString(60, u'n'));
        row("DVD title", dvd, "txtName", QString(61, u'n'), "Название", QString(60, u'n'));
        row("DVD time", dvd, "txtTime", "99999", "Время", "9999");
        row("year", computer, "txtYear", "123456", "Год", "12345");
    }

    void inputIsCutToWhatTheTableHolds()
    {
        QFETCH(int, category);
        QFETCH(QString, box);
        QFETCH(QString, typed);
        QFETCH(QString, column);
        const auto which = static_cast<Category>(category);
        const QString table = quoted(catalogueKind(which).info().table);
        Editing e;
        e.addRow(which, 1, "Old one");
        e.app.ctx.ShiftStart = 1;
        frmAddInCatalogue editor(e.app.ctx, which, frmAddInCatalogue::Mode::Add, 1);
        auto* input = editor.findChild<QLineEdit*>(box);
        input->clear();
        QTest::keyClicks(input, typed);
        if (box != "txtName") {
            field(editor, "txtName")->setText("Name");
        }
        editor.cmdAdd();
        QVERIFY(e.app.ctx.DialogDone);
        QTEST(e.value("SELECT " + column + " FROM " + table + " WHERE Номер = 1").toString(), "stored");
        QCOMPARE(e.value("SELECT Название FROM " + table + " WHERE Номер = 2").toString(), "Old one");
    }

    void failedSaveMovesNoNumber()
    {
        Editing e;
        e.addRow(Category::Dvd, 1, "A");
        e.addRow(Category::Dvd, 2, "B");
        test::writeFile(e.app.file("box/dvd_1.box"), "cover of A");
        e.exec("CREATE TRIGGER refused BEFORE INSERT ON DVD BEGIN SELECT RAISE(ABORT, 'refused'); END");
        e.app.ctx.ShiftStart = 1;
        frmAddInCatalogue editor(e.app.ctx, Category::Dvd, frmAddInCatalogue::Mode::Add, 1);
        field(editor, "txtName")->setText("New");
        QVERIFY_THROWS_EXCEPTION(ProcessEnded, editor.cmdAdd());
        QVERIFY(cp1251::decode(test::readFile(e.app.file("bugreport.log")))
                    .contains("frmAddInCatalogueDVD, cmdAdd()"));
        QCOMPARE(
            e.value("SELECT group_concat(Номер || Название, ' ') FROM (SELECT * FROM DVD ORDER BY Номер)")
                .toString(),
            "1A 2B");
        QCOMPARE(test::readFile(e.app.file("box/dvd_1.box")), QByteArray("cover of A"));
        QVERIFY(!QFile::exists(e.app.file("box/dvd_2.box")));
    }

    void dvdTimeSpinner()
    {
        Editing e;
        frmAddInCatalogue editor(e.app.ctx, Category::Dvd, frmAddInCatalogue::Mode::Add, 1);
        auto* time = field(editor, "txtTime");
        auto* spinner = editor.findChild<QWidget*>("udTime");
        QVERIFY(spinner);
        const QList<QToolButton*> arrows = spinner->findChildren<QToolButton*>();
        QCOMPARE(arrows.size(), 2);
        time->setText("90");
        for (QToolButton* arrow : arrows) {
            if (arrow->arrowType() == Qt::UpArrow) {
                arrow->click();
            }
        }
        QCOMPARE(time->text(), "91");
        QTest::keyClick(time, Qt::Key_Down);
        QTest::keyClick(time, Qt::Key_Down);
        QCOMPARE(time->text(), "89");
        time->setText("0");
        QTest::keyClick(time, Qt::Key_Down);
        QCOMPARE(time->text(), "0");
    }

    void tracksAndTimeFromTheDisc()
    {
        Editing e;
        const QString cue = m_discs.audioCue("info", {4500, 5250, 3000}); // 60 + 70 + 40 seconds
        addVirtualDrive(e.app.ctx.ini(), cue);
        setChosenDrive(e.app.ctx.ini(), cue);
        frmAddInCatalogue editor(e.app.ctx, Category::Audio, frmAddInCatalogue::Mode::Add, 1);
        e.app.prompter.answer(Answer::Cancel);
        editor.cmdInfo();
        QCOMPARE(field(editor, "txtTrack")->text(), "00");
        e.app.prompter.answer(Answer::Ok);
        editor.cmdInfo();
        QCOMPARE(field(editor, "txtTrack")->text(), "03");
        QCOMPARE(field(editor, "txtTime")->text(), "02:48"); // 170 seconds: 2 minutes and 170 mod 61
    }

    void addDialog()
    {
        Editing e;
        e.addRow(Category::Computer, 1, "Один");
        e.addRow(Category::Computer, 2, "Два");
        e.addRow(Category::Computer, 4, "Четыре");
        frmAddCD add(e.app.ctx, Category::Computer);
        add.show();
        QCOMPARE(field(add, "txtNumber")->text(), "3");
        QVERIFY(!field<QCheckBox>(add, "chAutoDetect")->isEnabled()); // no disc of the kind in the drive

        // The search offers 3, then 5.
        QCOMPARE(e.app.prompter.texts(), QStringList{"Устройство для чтения компакт-дисков не найдено!"});
        e.app.prompter.answer(Answer::No);
        e.app.prompter.answer(Answer::Yes);
        add.cmdSearch();
        QVERIFY(e.app.prompter.texts()[1].startsWith("Найден свободный диск № 3.\nДа\t- принять этот номер"));
        QVERIFY(e.app.prompter.texts()[2].startsWith("Найден свободный диск № 5."));
        QCOMPARE(add.chosenNumber(), 5);

        // A taken number: Yes asks for a shift, No adds a second disc of that number.
        frmAddCD again(e.app.ctx, Category::Computer);
        again.show();
        field(again, "txtNumber")->setText("2");
        e.app.prompter.answer(Answer::Yes);
        again.cmdOK();
        QCOMPARE(e.app.prompter.texts().last(),
                 "Диск № 2:\n'Два' уже существует.\nСместить все номера на 1 начиная с 2-го?");
        QCOMPARE(e.app.ctx.ShiftStart, qint16(2));
        e.app.ctx.ShiftStart = 0;
        frmAddCD third(e.app.ctx, Category::Computer);
        third.show();
        field(third, "txtNumber")->setText("2");
        e.app.prompter.answer(Answer::No);
        third.cmdOK();
        QCOMPARE(third.chosenNumber(), 2);
        QCOMPARE(e.app.ctx.ShiftStart, qint16(0));

        // On the audio catalogue the title always has the album, an empty one too.
        e.addRow(Category::Audio, 2, "Два");
        frmAddCD audio(e.app.ctx, Category::Audio);
        audio.show();
        field(audio, "txtNumber")->setText("2");
        e.app.prompter.answer(Answer::No);
        audio.cmdOK();
        QCOMPARE(e.app.prompter.texts().last(),
                 "Диск № 2:\n'Два - ' уже существует.\nСместить все номера на 1 начиная с 2-го?");
    }

    void addingADiscInTheDrive()
    {
        Editing e;
        const QString iso = m_discs.iso("new.iso", {"-J", "-V", "NEW"});
        const QString id = QString::number(readVolumeInfo(iso).serial, 16).toUpper();
        addVirtualDrive(e.app.ctx.ini(), iso);
        setChosenDrive(e.app.ctx.ini(), iso);
        e.app.prompter.handleModal([](QDialog& dialog) {
            dialog.show();
            [&] { QVERIFY(field<QCheckBox>(dialog, "chAutoDetect")->isChecked()); }();
            [&] { QCOMPARE(field<QLabel>(dialog, "lblInserCD")->text(), QString("Компьютерный диск")); }();
            static_cast<frmAddCD&>(dialog).cmdOK();
            return dialog.result();
        });
        e.app.prompter.handleModal([](QDialog& dialog) {
            field(dialog, "txtName")->setText("Новый диск");
            static_cast<frmAddInCatalogue&>(dialog).cmdAdd();
            return dialog.result();
        });
        QVERIFY(runAddDisc(e.app.ctx, Category::Computer, nullptr));
        QCOMPARE(e.value("SELECT ДискID1_d FROM Компьютер WHERE Номер = 1").toString(), id);

        // The same disc again: it is in the catalogue already.
        e.app.prompter.handleModal([](QDialog& dialog) {
            dialog.show();
            [&] { QVERIFY(!field<QCheckBox>(dialog, "chAutoDetect")->isEnabled()); }();
            return int(QDialog::Rejected);
        });
        e.app.prompter.answer(Answer::Yes);
        QVERIFY(!runAddDisc(e.app.ctx, Category::Computer, nullptr));
        QCOMPARE(e.app.prompter.texts().last(),
                 "Вы пытаетесь добавить диск, который уже есть в каталоге! Продолжить?");
    }
};

VINORA_TEST_MAIN(tst_discediting)
#include "tst_discediting.moc"
