#include "frame/Cp1251.h"
#include "lending/LoanLedger.h"
#include "lending/frmDueStat.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/DataRows.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"
#include "support/Widgets.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QTableWidget>
#include <QTreeWidget>

using namespace vinora;

namespace {

// A loan as the past left it: the disc by catalogue code and number (0 for a disc deleted
// since), the promised day and the day of return (empty: without term, still out).
struct PastLoan
{
    QString code;
    int number = 0;
    QString due;
    QString returned;
};

} // namespace

Q_DECLARE_METATYPE(PastLoan)

namespace {

QVariant dayOrNull(const QString& day)
{
    return day.isEmpty() ? QVariant() : QVariant(day);
}

// Number 12 in every catalogue, an audio disc 13 without album, a computer disc 9 and 100;
// four borrowers, not written in the order of their names.
struct Shelf
{
    Shelf(bool withBorrowers = true)
    {
        Reanimator(app.ctx, 0);
        Db db(app.ctx.MainDBPath);
        db.exec("INSERT INTO Аудио (Номер, Название, Альбом, Дисков, КодСтиля) VALUES (12, 'Кино', 'Группа "
                "крови', 1, 1)");
        db.exec("INSERT INTO Аудио (Номер, Название, Дисков, КодСтиля) VALUES (13, 'Аквариум', 1, 1)");
        for (const int number : {12, 9, 100}) {
            db.exec("INSERT INTO Компьютер (Номер, Название, Дисков, КодОписания) VALUES (?, ?, 1, 1)",
                    {number, QStringLiteral("Программа %1").arg(number)});
        }
        db.exec("INSERT INTO DVD (Номер, Название, Дисков, КодЖанр) VALUES (12, 'Брат', 1, 1)");
        if (withBorrowers) {
            for (const char* name : {"Вера", "Глеб", "Анна", "Борис"}) {
                db.exec("INSERT INTO ИменаДолжников (Имя, Телефон) VALUES (?, 'нет')",
                        {QString::fromUtf8(name)});
            }
        }
    }
    void lend(const QString& name, const QList<PastLoan>& loans) const
    {
        Db db(app.ctx.MainDBPath);
        for (const PastLoan& past : loans) {
            const Category category = categoryByCode(past.code)->category;
            const qint64 key = past.number == 0 ? 999 : findLoanDisc(db, category, past.number)->key;
            db.exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВыдачи, ДатаВозврата, "
                    "ДатаВозвратаРеальная, Долг) VALUES (?, ?, ?, '2026-01-01', ?, ?, ?)",
                    {borrowerFor(db, name), key, past.code, dayOrNull(past.due), dayOrNull(past.returned),
                     past.returned.isEmpty() ? kTrue : kFalse});
        }
    }
    void exec(const QString& sql) const { Db(app.ctx.MainDBPath).exec(sql); }

    test::TestApp app;
};

QTreeWidget* ratingList(const frmDueStat& window)
{
    return window.findChild<QTreeWidget*>("lvRating");
}

// What the window shows of the record: its lines, and the days late, the rating, the bar and
// the discs still out as "days | rating | bar | out".
struct Shown
{
    explicit Shown(const frmDueStat& window)
    {
        const QTreeWidget* list = ratingList(window);
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            const QTreeWidgetItem* item = list->topLevelItem(i);
            lines.append(item->text(0) + " | " + item->text(1) + " | " + item->text(2));
        }
        noDue = window.findChild<QLabel*>("txtNoDue")->isVisible();
        listShown = list->isVisible();
        figures = QStringList{window.findChild<QLabel*>("lblTotalDays1")->text(),
                              window.findChild<QLabel*>("lblRating1")->text(),
                              QString::number(window.findChild<QProgressBar*>("prbRating")->value()),
                              window.findChild<QLabel*>("lblDueCount")->text()}
                      .join(" | ");
    }
    QStringList lines;
    bool noDue = false;
    bool listShown = false;
    QString figures;
};

} // namespace

class tst_duestat : public QObject
{
    Q_OBJECT

private slots:
    void theRecord_data()
    {
        QTest::addColumn<QList<PastLoan>>("loans");
        QTest::addColumn<QStringList>("filters"); // the texts of the controls clicked
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("figures");

        const auto row = test::addRow<QList<PastLoan>, QStringList, QStringList, QString>;
        const PastLoan late20{"AD", 12, "2026-10-01", "2026-10-21"};
        const PastLoan outPc{"PC", 12, "2026-12-01", ""};
        const QString nothing = "- | - | 0 | -";
        row("20 days late and one out", {late20, outPc}, {},
            {"Аудио диск | 12 | 20", "Компьютерный диск | 12 | ?"}, "20 | Плохой | 10 | 1");
        row("200 days late: capped", {{"DVD", 12, "2026-01-01", "2026-07-20"}}, {}, {"DVD диск | 12 | 200"},
            "200 | Хуже некуда... | 80 | нет");
        row("on time, early, without term",
            {{"AD", 12, "2026-10-10", "2026-10-10"},
             {"PC", 9, "2026-10-10", "2026-10-02"},
             {"AD", 13, "", "2026-11-01"}},
            {}, {"Аудио диск | 12 | нет", "Компьютерный диск | 9 | нет", "Аудио диск | 13 | нет"},
            "0 | Хороший | 0 | нет");
        // Halves go to the even number: 5 / 2 to 2, 30 / 4 to 8 (below).
        row("2,5 rounds to 2", {{"AD", 12, "2026-10-01", "2026-10-06"}, outPc}, {},
            {"Аудио диск | 12 | 5", "Компьютерный диск | 12 | ?"}, "5 | Нормальный | 2 | 1");
        row("a disc deleted since", {{"AD", 0, "2026-10-01", "2026-11-01"}}, {}, {"Аудио диск | - | 31"},
            "31 | Ужасный!!! | 31 | нет");
        row("only the discs out", {late20, outPc}, {"Долги"}, {"Компьютерный диск | 12 | ?"},
            "- | - | 0 | 1");
        row("only the discs out, none", {late20}, {"Долги"}, {}, nothing);
        const QList<PastLoan> mixed{{"AD", 12, "2026-10-01", "2026-10-31"},
                                    {"PC", 9, "2026-10-01", "2026-10-01"},
                                    {"PC", 100, "2026-10-01", "2026-10-01"},
                                    {"DVD", 12, "2026-12-01", ""}};
        row("all categories", mixed, {},
            {"Аудио диск | 12 | 30", "Компьютерный диск | 9 | нет", "Компьютерный диск | 100 | нет",
             "DVD диск | 12 | ?"},
            "30 | Плохой | 8 | 1");
        row("audio only", mixed, {"Аудио"}, {"Аудио диск | 12 | 30"}, "30 | Ужасный!!! | 30 | нет");
        row("computer only", mixed, {"Компьютерные"},
            {"Компьютерный диск | 9 | нет", "Компьютерный диск | 100 | нет"}, "0 | Хороший | 0 | нет");
        row("DVD only, out", mixed, {"Долги", "DVD"}, {"DVD диск | 12 | ?"}, "- | - | 0 | 1");
        row("DVD only, none", {late20}, {"DVD"}, {}, nothing);
        row("no loans at all", {}, {}, {}, nothing);
    }

    void theRecord()
    {
        QFETCH(QList<PastLoan>, loans);
        QFETCH(QStringList, filters);
        QFETCH(QStringList, lines);
        QFETCH(QString, figures);
        Shelf shelf;
        shelf.lend("Вера", loans);
        // Another borrower's loans stay out of Вера's record.
        shelf.lend("Анна", {{"AD", 13, "2026-01-01", "2026-11-01"}, {"PC", 100, "2026-11-01", ""}});

        frmDueStat window(shelf.app.ctx, "вера");
        window.show();
        QCOMPARE(window.current()->name, "Вера");
        // The filters are set as the user sets them, each click showing the record again.
        const QList<QAbstractButton*> controls = window.findChildren<QAbstractButton*>();
        for (const QString& filter : filters) {
            const auto it =
                std::find_if(controls.begin(), controls.end(),
                             [&](const QAbstractButton* control) { return control->text() == filter; });
            QVERIFY2(it != controls.end(), qPrintable(filter));
            QTest::mouseClick(*it, Qt::LeftButton, {}, QPoint(8, (*it)->height() / 2));
            QVERIFY((*it)->isChecked());
        }
        const Shown shown(window);
        QCOMPARE(shown.lines, lines);
        QCOMPARE(shown.noDue, lines.isEmpty());
        QCOMPARE(shown.listShown, !lines.isEmpty());
        QCOMPARE(shown.figures, figures);
        QVERIFY(shelf.app.prompter.texts().isEmpty());
    }

    void borrowersInTheOrderOfTheirNames()
    {
        Shelf shelf;
        shelf.lend("Глеб", {{"AD", 12, "2026-10-01", "2026-10-04"}});
        frmDueStat window(shelf.app.ctx);
        window.show();
        QCOMPARE(window.windowTitle(), "Статистика должников (всего: 4)");
        auto* grid = window.findChild<QTableWidget*>("DBGrid");
        QStringList names;
        for (int row = 0; row < grid->rowCount(); ++row) {
            names.append(grid->item(row, 0)->text());
        }
        QCOMPARE(names, (QStringList{"Анна", "Борис", "Вера", "Глеб"}));
        QCOMPARE(window.current()->name, "Анна");

        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_End);
        QCOMPARE(window.current()->name, "Глеб");
        QCOMPARE(Shown(window).lines, QStringList{"Аудио диск | 12 | 3"}); // his record came with him
        QCOMPARE(Shown(window).figures, "3 | Нормальный | 3 | нет");
        QTest::keyClick(grid, Qt::Key_Home);
        QCOMPARE(window.current()->name, "Анна");
        QVERIFY(Shown(window).noDue);
        QCOMPARE(Shown(window).figures, "- | - | 0 | -");

        QVERIFY(window.standOn("БОРИС"));
        QCOMPARE(window.current()->name, "Борис");
        QVERIFY(!window.standOn("Дмитрий"));
        QCOMPARE(window.current()->name, "Борис");

        frmDueStat opened(shelf.app.ctx, "Глеб");
        QCOMPARE(opened.current()->name, "Глеб");
        QCOMPARE(Shown(opened).lines, QStringList{"Аудио диск | 12 | 3"});
        frmDueStat unknown(shelf.app.ctx, "Дмитрий");
        QCOMPARE(unknown.current()->name, "Анна");
    }

    void noBorrowers()
    {
        Shelf shelf(false);
        frmDueStat window(shelf.app.ctx);
        window.show();
        QCOMPARE(window.windowTitle(), "Статистика должников (всего: 0)");
        QVERIFY(!window.current());
        for (const char* name :
             {"chDue", "optSorted0", "optSorted3", "lvRating", "prbRating", "lblRating1"}) {
            QVERIFY2(!window.findChild<QWidget*>(QString::fromLatin1(name))->isEnabled(), name);
        }
        QVERIFY(window.findChild<QWidget*>("imgButton0")->isEnabled());
        const Shown shown(window);
        QVERIFY(shown.noDue);
        QVERIFY(shown.lines.isEmpty());
        QCOMPARE(shown.figures, "- | - | 0 | -");
    }

    void doubleClickTellsTheDisc()
    {
        Shelf shelf;
        shelf.lend("Анна", {{"AD", 12, "2026-10-01", "2026-10-02"},
                            {"AD", 13, "2026-10-01", ""},
                            {"PC", 100, "2026-10-01", "2026-10-01"},
                            {"DVD", 12, "", ""},
                            {"PC", 0, "2026-10-01", "2026-10-01"}});
        frmDueStat window(shelf.app.ctx);
        window.show();
        window.lvRating_DblClick(); // nothing selected yet: nothing said
        QVERIFY(shelf.app.prompter.texts().isEmpty());
        QTreeWidget* list = ratingList(window);
        for (int row = 0; row < 5; ++row) {
            const QPoint at = list->visualItemRect(list->topLevelItem(row)).center();
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
        }
        QCOMPARE(shelf.app.prompter.texts(),
                 (QStringList{"Аудио диск № 12:\n'Кино - Группа крови'", "Аудио диск № 13:\n'Аквариум'",
                              "Компьютерный диск № 100:\n'Программа 100'", "DVD диск № 12:\n'Брат'",
                              "Этот диск был удален из каталога."}));
    }

    void columnClicksSortAsText()
    {
        Shelf shelf;
        shelf.lend("Анна", {{"PC", 9, "2026-10-01", "2026-10-03"},
                            {"AD", 12, "2026-10-01", ""},
                            {"PC", 100, "2026-10-01", "2026-10-11"},
                            {"DVD", 12, "2026-10-01", "2026-10-01"}});
        frmDueStat window(shelf.app.ctx);
        window.show();
        auto column = [&](int c) {
            QStringList texts;
            for (int i = 0; i < ratingList(window)->topLevelItemCount(); ++i) {
                texts.append(ratingList(window)->topLevelItem(i)->text(c));
            }
            return texts;
        };
        QCOMPARE(column(1), (QStringList{"9", "12", "100", "12"})); // the ledger's order
        test::clickHeader(ratingList(window)->header(), 1);
        QCOMPARE(column(1), (QStringList{"100", "12", "12", "9"})); // as text
        QCOMPARE(column(0).value(1), "Аудио диск");                 // equal keys keep their order
        test::clickHeader(ratingList(window)->header(), 1);
        QCOMPARE(column(1), (QStringList{"9", "12", "12", "100"}));
        test::clickHeader(ratingList(window)->header(), 2); // another column: ascending
        QCOMPARE(column(2), (QStringList{"?", "10", "2", "нет"}));
        test::clickHeader(ratingList(window)->header(), 0);
        // Latin before Cyrillic, as the catalogue sorts.
        QCOMPARE(column(0),
                 (QStringList{"DVD диск", "Аудио диск", "Компьютерный диск", "Компьютерный диск"}));
        test::clickHeader(ratingList(window)->header(), 0);
        const QStringList down{"Компьютерный диск", "Компьютерный диск", "Аудио диск", "DVD диск"};
        QCOMPARE(column(0), down);
        // Shown again after a filter, the list keeps the order chosen.
        QTest::mouseClick(window.findChild<QCheckBox*>("chDue"), Qt::LeftButton);
        QTest::mouseClick(window.findChild<QCheckBox*>("chDue"), Qt::LeftButton);
        QCOMPARE(column(0), down);
    }

    void faultsAreToldWithTheirPlace_data()
    {
        QTest::addColumn<QString>("table"); // dropped under the routine named by the row
        QTest::newRow("CheckDue") << "Должники";
        QTest::newRow("lvRating_DblClick") << "DVD";
    }

    void faultsAreToldWithTheirPlace()
    {
        QFETCH(QString, table);
        const QString routine = QString::fromLatin1(QTest::currentDataTag());
        Shelf shelf;
        shelf.lend("Анна", {{"DVD", 12, "2026-10-01", ""}});
        frmDueStat window(shelf.app.ctx);
        ratingList(window)->setCurrentItem(ratingList(window)->topLevelItem(0));
        shelf.exec("DROP TABLE " + table);
        QVERIFY_THROWS_EXCEPTION(ProcessEnded,
                                 routine == "CheckDue" ? window.CheckDue() : window.lvRating_DblClick());
        const QString log = cp1251::decode(test::readFile(shelf.app.file("bugreport.log")));
        QVERIFY2(log.contains("frmDueStat, " + routine + "()"), qPrintable(log));
    }
};

VINORA_TEST_MAIN(tst_duestat)
#include "tst_duestat.moc"
