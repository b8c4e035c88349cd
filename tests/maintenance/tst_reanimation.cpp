#include "SampleCollection.h"
#include "maintenance/Reanimation.h"
#include "maintenance/frmReanimation.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestMain.h"

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>

using namespace vinora;

namespace {

struct Repair
{
    test::TestApp app;
    Repair()
    {
        Reanimator(app.ctx, 0);
        test::addDiscs(app.folder.path(), {{Category::Computer, 1, "Игры", {}, "Квест", {"C1", "C2"}},
                                           {Category::Computer, 2, "Без списка", {}, "Квест", {}},
                                           {Category::Audio, 1, "Кино", "Звезда", "Rock", {"A1", "A2", "A3"}},
                                           {Category::Audio, 2, "Сплин", "", "Rock", {}}});
        Db files(app.ctx.FilesDBPath);
        ContentsLists(files, ContentsKind::Files).create("ORPHAN");
    }
    QString ids(const QString& table, int number) const
    {
        return test::valueOf(app.ctx.MainDBPath,
                             "SELECT Дисков || ':' || ifnull(ДискID1, '-') || ifnull(ДискID2, '-') || "
                             "ifnull(ДискID3, '-') FROM " +
                                 table + " WHERE Номер = ?",
                             {number})
            .toString();
    }
    // Starts the form with option `index`, the box as given, as the user does.
    void start(int index, bool recreate)
    {
        frmReanimation window(app.ctx);
        QTest::mouseClick(window.findChild<QRadioButton*>(QString("optReanimation%1").arg(index)),
                          Qt::LeftButton);
        window.findChild<QCheckBox*>("chReCreate")->setChecked(recreate);
        QTest::mouseClick(window.findChild<QPushButton*>("imgButton0"), Qt::LeftButton);
        returnedToMain = window.returnToMain();
    }
    bool returnedToMain = false;
};

} // namespace

class tst_reanimation : public QObject
{
    Q_OBJECT

private slots:
    void optionsSetTheBox()
    {
        test::TestApp app;
        frmReanimation window(app.ctx);
        auto* box = window.findChild<QCheckBox*>("chReCreate");
        const auto choose = [&](int index) {
            QTest::mouseClick(window.findChild<QRadioButton*>(QString("optReanimation%1").arg(index)),
                              Qt::LeftButton);
        };
        choose(2);
        QCOMPARE(box->text(), QString("Пересоздать базу данных по трекам"));
        box->setChecked(true);
        choose(0);
        QCOMPARE(box->isEnabled(), false);
        QCOMPARE(box->isChecked(), false);
        choose(1);
        QCOMPARE(box->text(), QString("Пересоздать базу данных по структуре дисков"));
        QCOMPARE(box->isEnabled(), true);
    }

    void linksRepaired_data()
    {
        QTest::addColumn<int>("option");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("contents");
        QTest::addColumn<QString>("dropped");
        QTest::addColumn<QString>("repaired");
        QTest::newRow("file lists") << 1 << QString("Компьютер") << QString("files") << QString("C2")
                                    << "2:C1--";
        QTest::newRow("track lists") << 2 << QString("Аудио") << QString("tracks") << QString("A1")
                                     << "3:-A2A3";
    }

    void linksRepaired()
    {
        QFETCH(int, option);
        QFETCH(QString, table);
        QFETCH(QString, contents);
        QFETCH(QString, dropped);
        Repair r;
        const QString contentsPath = contents == "files" ? r.app.ctx.FilesDBPath : r.app.ctx.TracksDBPath;
        {
            Db lists(contentsPath);
            ContentsLists(lists, option == 1 ? ContentsKind::Files : ContentsKind::Tracks).drop(dropped);
            Db main(r.app.ctx.MainDBPath);
            main.exec("UPDATE " + table + " SET Дисков = 0 WHERE Номер = 2");
        }
        // The check alone writes nothing.
        const RepairReport found = Reanimation(r.app.ctx, option, false);
        QCOMPARE(found.errors, 2);
        QCOMPARE(found.found.first(), table + " № 1: ДискID" + (option == 1 ? "2" : "1") + " '" + dropped +
                                          "' - нет такого списка");
        QCOMPARE(r.ids(table, 2).left(2), QString("0:"));

        r.start(option, false);
        QCOMPARE(r.app.prompter.texts(),
                 QStringList{"Операция успешно завершена!\nНайдено и исправлено ошибок: 2"});
        QCOMPARE(r.app.prompter.shown.last().style, MessageStyle::Information);
        QTEST(r.ids(table, 1), "repaired");
        QCOMPARE(r.ids(table, 2), QString("1:---"));
        r.start(option, false);
        QCOMPARE(r.app.prompter.texts().last(), QString("Ошибок не найдено!"));
        // The repair goes from the rows to the lists: a list no row points at stays.
        QCOMPARE(test::countOf(r.app.ctx.FilesDBPath, "SELECT count(*) FROM Списки WHERE ДискID = 'ORPHAN'"),
                 1);
    }

    void listsRebuilt_data()
    {
        QTest::addColumn<int>("option");
        QTest::addColumn<QString>("question");
        const QString question = "Вы уверены, что хотите приступить к реанимации %1?\n\nВсе ранее "
                                 "добавленные %2 будут удалены!";
        QTest::newRow("file lists") << 1 << question.arg(QString("структуры дисков"), QString("файлы"));
        QTest::newRow("track lists") << 2 << question.arg(QString("треков"), QString("треки"));
    }

    void listsRebuilt()
    {
        QFETCH(int, option);
        QFETCH(QString, question);
        Repair r;
        Db(r.app.ctx.FilesDBPath).exec("DELETE FROM Фильтр1");
        const QString table = option == 1 ? QString("Компьютер") : QString("Аудио");
        const QString contents = option == 1 ? r.app.ctx.FilesDBPath : r.app.ctx.TracksDBPath;
        const QString other = option == 1 ? r.app.ctx.TracksDBPath : r.app.ctx.FilesDBPath;
        r.app.prompter.answer(Answer::Cancel);
        r.start(option, true);
        QCOMPARE(r.app.prompter.texts(), QStringList{question});
        QCOMPARE(r.app.prompter.shown.last().style, MessageStyle::OkCancelStop);
        QVERIFY(test::countOf(contents, "SELECT count(*) FROM Списки") > 0);

        const int otherLists = test::countOf(other, "SELECT count(*) FROM Списки");
        r.app.prompter.answer(Answer::Ok);
        r.start(option, true);
        QCOMPARE(r.app.prompter.texts().last(), QString("Операция успешно завершена!"));
        QCOMPARE(test::countOf(contents, "SELECT count(*) FROM Списки"), 0);
        QCOMPARE(
            test::countOf(r.app.ctx.MainDBPath, "SELECT count(*) FROM " + table +
                                                    " WHERE coalesce(ДискID1, ДискID2, ДискID3, ДискID4, "
                                                    "ДискID5, ДискID6) IS NOT NULL"),
            0);
        QCOMPARE(test::countOf(other, "SELECT count(*) FROM Списки"), otherLists);
        if (option == 1) {
            QCOMPARE(test::countOf(r.app.ctx.FilesDBPath, "SELECT count(*) FROM Фильтр1"), 8);
        }
    }

    void everythingBuiltAnew_data()
    {
        QTest::addColumn<bool>("ok");
        QTest::newRow("OK") << true;
        QTest::newRow("Cancel") << false;
    }

    void everythingBuiltAnew()
    {
        QFETCH(bool, ok);
        Repair r;
        r.app.prompter.answer(ok ? Answer::Ok : Answer::Cancel);
        r.start(0, false);
        QStringList told{
            "Вы уверены, что хотите приступить к реанимации vinora?\n\nВсе ранее внесенные данные будут "
            "потеряны!"};
        if (ok) {
            told.append("Реанимация vinora успешно завершена!");
        }
        QCOMPARE(r.app.prompter.texts(), told);
        QCOMPARE(r.returnedToMain, ok);
        QCOMPARE(test::countOf(r.app.ctx.MainDBPath, "SELECT count(*) FROM Аудио"), ok ? 0 : 2);
        QCOMPARE(test::countOf(r.app.ctx.MainDBPath, "SELECT count(*) FROM Стиль"), 31);
        QCOMPARE(test::countOf(r.app.ctx.FilesDBPath, "SELECT count(*) FROM Списки"), ok ? 0 : 3);
    }
};

VINORA_TEST_MAIN(tst_reanimation)
#include "tst_reanimation.moc"
