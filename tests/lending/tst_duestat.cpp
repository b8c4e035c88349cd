#include "frame/Cp1251.h"
#include "lending/LoanLedger.h"
#include "lending/frmDueStat.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QRadioButton>
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
    void loan(const QString& name, const PastLoan& past) const
    {
        Db db(app.ctx.MainDBPath);
        const Category category = categoryByCode(past.code)->category;
        const qint64 key = past.number == 0 ? 999 : findLoanDisc(db, category, past.number)->key;
        db.exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВыдачи, ДатаВозврата, "
                "ДатаВозвратаРеальная, Долг) VALUES (?, ?, ?, '2026-01-01', ?, ?, ?)",
                {borrowerFor(db, name), key, past.code, dayOrNull(past.due), dayOrNull(past.returned),
                 past.returned.isEmpty() ? kTrue : kFalse});
    }
    void exec(const QString& sql) const
    {
        Db db(app.ctx.MainDBPath);
        db.exec(sql);
    }

    test::TestApp app;
};

// What the window shows of the record.
struct Shown
{
    explicit Shown(const frmDueStat& window)
    {
        auto* list = window.findChild<QTreeWidget*>("lvRating");
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            const QTreeWidgetItem* item = list->topLevelItem(i);
            lines.append(item->text(0) + " | " + item->text(1) + " | " + item->text(2));
        }
        noDue = window.findChild<QLabel*>("txtNoDue")->isVisible();
        listShown = list->isVisible();
        totalDays = window.findChild<QLabel*>("lblTotalDays1")->text();
        rating = window.findChild<QLabel*>("lblRating1")->text();
        dueCount = window.findChild<QLabel*>("lblDueCount")->text();
        bar = window.findChild<QProgressBar*>("prbRating")->value();
    }
    QStringList lines;
    bool noDue = false;
    bool listShown = false;
    QString totalDays, rating, dueCount;
    int bar = -1;
};

QTreeWidget* ratingList(const frmDueStat& window)
{
    return window.findChild<QTreeWidget*>("lvRating");
}

void clickColumn(const frmDueStat& window, int column)
{
    QHeaderView* header = ratingList(window)->header();
    const QPoint at(header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                    header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
}

void doubleClick(const frmDueStat& window, int row)
{
    QTreeWidget* list = ratingList(window);
    const QPoint at = list->visualItemRect(list->topLevelItem(row)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
}

} // namespace

class tst_duestat : public QObject
{
    Q_OBJECT

private slots:
    void theRecord_data()
    {
        QTest::addColumn<QList<PastLoan>>("loans");
        QTest::addColumn<bool>("outOnly");
        QTest::addColumn<int>("category"); // the option of optSorted
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("totalDays");
        QTest::addColumn<QString>("rating");
        QTest::addColumn<int>("bar");
        QTest::addColumn<QString>("dueCount");

        const PastLoan late20{"AD", 12, "2026-10-01", "2026-10-21"};
        const PastLoan outPc{"PC", 12, "2026-12-01", ""};
        const QList<PastLoan> lateAndOut{late20, outPc};
        QTest::newRow("20 days late and one out")
            << lateAndOut << false << 0 << QStringList{"Аудио диск | 12 | 20", "Компьютерный диск | 12 | ?"}
            << "20"
            << "Плохой" << 10 << "1";
        QTest::newRow("200 days late: capped") << QList<PastLoan>{{"DVD", 12, "2026-01-01", "2026-07-20"}}
                                               << false << 0 << QStringList{"DVD диск | 12 | 200"} << "200"
                                               << "Хуже некуда..." << 80 << "нет";
        QTest::newRow("on time, early, without term")
            << QList<PastLoan>{{"AD", 12, "2026-10-10", "2026-10-10"},
                               {"PC", 9, "2026-10-10", "2026-10-02"},
                               {"AD", 13, "", "2026-11-01"}}
            << false << 0
            << QStringList{"Аудио диск | 12 | нет", "Компьютерный диск | 9 | нет", "Аудио диск | 13 | нет"}
            << "0"
            << "Хороший" << 0 << "нет";
        QTest::newRow("2,5 rounds to 2")
            << QList<PastLoan>{{"AD", 12, "2026-10-01", "2026-10-06"}, outPc} << false << 0
            << QStringList{"Аудио диск | 12 | 5", "Компьютерный диск | 12 | ?"} << "5"
            << "Нормальный" << 2 << "1";
        QTest::newRow("3,5 rounds to 4")
            << QList<PastLoan>{{"AD", 12, "2026-10-01", "2026-10-08"}, outPc} << false << 0
            << QStringList{"Аудио диск | 12 | 7", "Компьютерный диск | 12 | ?"} << "7"
            << "Нормальный" << 4 << "1";
        QTest::newRow("a disc deleted since") << QList<PastLoan>{{"AD", 0, "2026-10-01", "2026-11-01"}}
                                              << false << 0 << QStringList{"Аудио диск | - | 31"} << "31"
                                              << "Ужасный!!!" << 31 << "нет";
        QTest::newRow("only the discs out")
            << lateAndOut << true << 0 << QStringList{"Компьютерный диск | 12 | ?"} << "-"
            << "-" << 0 << "1";
        QTest::newRow("only the discs out, none")
            << QList<PastLoan>{late20} << true << 0 << QStringList{} << "-"
            << "-" << 0 << "-";
        const QList<PastLoan> mixed{{"AD", 12, "2026-10-01", "2026-10-31"},
                                    {"PC", 9, "2026-10-01", "2026-10-01"},
                                    {"PC", 100, "2026-10-01", "2026-10-01"},
                                    {"DVD", 12, "2026-12-01", ""}};
        QTest::newRow("all categories") << mixed << false << 0
                                        << QStringList{"Аудио диск | 12 | 30", "Компьютерный диск | 9 | нет",
                                                       "Компьютерный диск | 100 | нет", "DVD диск | 12 | ?"}
                                        << "30"
                                        << "Плохой" << 8 << "1"; // 30 / 4 = 7,5: to the even 8
        QTest::newRow("audio only") << mixed << false << 1 << QStringList{"Аудио диск | 12 | 30"} << "30"
                                    << "Ужасный!!!" << 30 << "нет";
        QTest::newRow("computer only")
            << mixed << false << 2
            << QStringList{"Компьютерный диск | 9 | нет", "Компьютерный диск | 100 | нет"} << "0"
            << "Хороший" << 0 << "нет";
        QTest::newRow("DVD only, out") << mixed << true << 3 << QStringList{"DVD диск | 12 | ?"} << "-"
                                       << "-" << 0 << "1";
        QTest::newRow("DVD only, none") << QList<PastLoan>{late20} << false << 3 << QStringList{} << "-"
                                        << "-" << 0 << "-";
        QTest::newRow("no loans at all") << QList<PastLoan>{} << false << 0 << QStringList{} << "-"
                                         << "-" << 0 << "-";
    }

    void theRecord()
    {
        QFETCH(QList<PastLoan>, loans);
        QFETCH(bool, outOnly);
        QFETCH(int, category);
        QFETCH(QStringList, lines);
        QFETCH(QString, totalDays);
        QFETCH(QString, rating);
        QFETCH(int, bar);
        QFETCH(QString, dueCount);
        Shelf shelf;
        for (const PastLoan& loan : loans) {
            shelf.loan("Вера", loan);
        }
        // Another borrower's loans stay out of Вера's record.
        shelf.loan("Анна", {"AD", 13, "2026-01-01", "2026-11-01"});
        shelf.loan("Анна", {"PC", 100, "2026-11-01", ""});

        frmDueStat window(shelf.app.ctx, "вера");
        window.show();
        QCOMPARE(window.current()->name, "Вера");
        // The filters are set as the user sets them, each click showing the record again.
        if (outOnly) {
            QTest::mouseClick(window.findChild<QCheckBox*>("chDue"), Qt::LeftButton);
        }
        if (category != 0) {
            auto* option = window.findChild<QRadioButton*>(QStringLiteral("optSorted%1").arg(category));
            QTest::mouseClick(option, Qt::LeftButton, {}, QPoint(8, option->height() / 2));
            QVERIFY(option->isChecked());
        }
        const Shown shown(window);
        QCOMPARE(shown.lines, lines);
        QCOMPARE(shown.noDue, lines.isEmpty());
        QCOMPARE(shown.listShown, !lines.isEmpty());
        QCOMPARE(shown.totalDays, totalDays);
        QCOMPARE(shown.rating, rating);
        QCOMPARE(shown.bar, bar);
        QCOMPARE(shown.dueCount, dueCount);
        QVERIFY(shelf.app.prompter.texts().isEmpty());
    }

    void theBarRunsTo80()
    {
        Shelf shelf;
        frmDueStat window(shelf.app.ctx);
        auto* bar = window.findChild<QProgressBar*>("prbRating");
        QCOMPARE(bar->minimum(), 0);
        QCOMPARE(bar->maximum(), 80);
        QVERIFY(window.findChild<QLabel*>("imgGood") != nullptr);
        QVERIFY(window.findChild<QLabel*>("imgBad") != nullptr);
        QCOMPARE(window.findChild<QLabel*>("lblTotalDays0")->text(), "Общее количество дней задержки:");
        QCOMPARE(window.findChild<QLabel*>("lblDueCount0")->text(), "Долгов:");
        const QTreeWidgetItem* header = ratingList(window)->headerItem();
        QCOMPARE((QStringList{header->text(0), header->text(1), header->text(2)}),
                 (QStringList{"Категория диска", "№", "Задержка (дн.)"}));
        QStringList options;
        for (int i = 0; i < 4; ++i) {
            options.append(window.findChild<QRadioButton*>(QStringLiteral("optSorted%1").arg(i))->text());
        }
        QCOMPARE(options, (QStringList{"Все", "Аудио", "Компьютерные", "DVD"}));
        QVERIFY(window.findChild<QRadioButton*>("optSorted0")->isChecked());
        QCOMPARE(window.findChild<QCheckBox*>("chDue")->text(), "Долги");
    }

    void borrowersInTheOrderOfTheirNames()
    {
        Shelf shelf;
        shelf.loan("Глеб", {"AD", 12, "2026-10-01", "2026-10-04"});
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
        QVERIFY(Shown(window).noDue);

        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_End);
        QCOMPARE(window.current()->name, "Глеб");
        QCOMPARE(Shown(window).lines, QStringList{"Аудио диск | 12 | 3"}); // his record came with him
        QCOMPARE(Shown(window).rating, "Нормальный");
        QTest::keyClick(grid, Qt::Key_Home);
        QCOMPARE(window.current()->name, "Анна");
        QVERIFY(Shown(window).noDue);
        QCOMPARE(Shown(window).rating, "-");

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
        QCOMPARE((QStringList{shown.totalDays, shown.rating, shown.dueCount}), (QStringList{"-", "-", "-"}));
        QCOMPARE(shown.bar, 0);
    }

    void doubleClickTellsTheDisc_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("message");
        QTest::newRow("audio") << 0 << "Аудио диск № 12:\n'Кино - Группа крови'";
        QTest::newRow("audio without album") << 1 << "Аудио диск № 13:\n'Аквариум'";
        QTest::newRow("computer") << 2 << "Компьютерный диск № 100:\n'Программа 100'";
        QTest::newRow("DVD") << 3 << "DVD диск № 12:\n'Брат'";
        QTest::newRow("deleted") << 4 << "Этот диск был удален из каталога.";
    }

    void doubleClickTellsTheDisc()
    {
        QFETCH(int, row);
        QFETCH(QString, message);
        Shelf shelf;
        for (const PastLoan& loan : QList<PastLoan>{{"AD", 12, "2026-10-01", "2026-10-02"},
                                                    {"AD", 13, "2026-10-01", ""},
                                                    {"PC", 100, "2026-10-01", "2026-10-01"},
                                                    {"DVD", 12, "", ""},
                                                    {"PC", 0, "2026-10-01", "2026-10-01"}}) {
            shelf.loan("Анна", loan);
        }
        frmDueStat window(shelf.app.ctx);
        window.show();
        window.lvRating_DblClick(); // nothing selected yet: nothing said
        QVERIFY(shelf.app.prompter.texts().isEmpty());
        doubleClick(window, row);
        QCOMPARE(shelf.app.prompter.texts(), QStringList{message});
    }

    void columnClicksSortAsText()
    {
        Shelf shelf;
        for (const PastLoan& loan : QList<PastLoan>{{"PC", 9, "2026-10-01", "2026-10-03"},
                                                    {"AD", 12, "2026-10-01", ""},
                                                    {"PC", 100, "2026-10-01", "2026-10-11"},
                                                    {"DVD", 12, "2026-10-01", "2026-10-01"}}) {
            shelf.loan("Анна", loan);
        }
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
        clickColumn(window, 1);
        QCOMPARE(column(1), (QStringList{"100", "12", "12", "9"})); // as text
        QCOMPARE(column(0).value(1), "Аудио диск");                 // equal keys keep their order
        clickColumn(window, 1);
        QCOMPARE(column(1), (QStringList{"9", "12", "12", "100"}));
        clickColumn(window, 2); // another column: ascending
        QCOMPARE(column(2), (QStringList{"?", "10", "2", "нет"}));
        clickColumn(window, 0);
        // Latin before Cyrillic, as the catalogue sorts.
        QCOMPARE(column(0),
                 (QStringList{"DVD диск", "Аудио диск", "Компьютерный диск", "Компьютерный диск"}));
        clickColumn(window, 0);
        QCOMPARE(column(0),
                 (QStringList{"Компьютерный диск", "Компьютерный диск", "Аудио диск", "DVD диск"}));
        // Shown again after a filter, the list keeps the order chosen.
        QTest::mouseClick(window.findChild<QCheckBox*>("chDue"), Qt::LeftButton);
        QTest::mouseClick(window.findChild<QCheckBox*>("chDue"), Qt::LeftButton);
        QCOMPARE(column(0),
                 (QStringList{"Компьютерный диск", "Компьютерный диск", "Аудио диск", "DVD диск"}));
    }

    void faultsAreToldWithTheirPlace_data()
    {
        QTest::addColumn<QString>("routine");
        QTest::newRow("CheckDue") << "CheckDue";
        QTest::newRow("lvRating_DblClick") << "lvRating_DblClick";
    }

    void faultsAreToldWithTheirPlace()
    {
        QFETCH(QString, routine);
        Shelf shelf;
        shelf.loan("Анна", {"DVD", 12, "2026-10-01", ""});
        frmDueStat window(shelf.app.ctx);
        ratingList(window)->setCurrentItem(ratingList(window)->topLevelItem(0));
        if (routine == "CheckDue") {
            shelf.exec("DROP TABLE Должники");
            QVERIFY_THROWS_EXCEPTION(ProcessEnded, window.CheckDue());
        } else {
            shelf.exec("DROP TABLE DVD");
            QVERIFY_THROWS_EXCEPTION(ProcessEnded, window.lvRating_DblClick());
        }
        const QString log = cp1251::decode(test::readFile(shelf.app.file("bugreport.log")));
        QVERIFY2(log.contains("frmDueStat, " + routine + "()"), qPrintable(log));
    }
};

VINORA_TEST_MAIN(tst_duestat)
#include "tst_duestat.moc"
