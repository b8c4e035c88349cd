#include "lending/BorrowerRating.h"
#include "lending/DueList.h"
#include "lending/LoanLedger.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestMain.h"

using namespace vinora;

namespace {

const QDate kToday(2026, 11, 22);

struct Ledger
{
    Ledger()
    {
        Reanimator(app.ctx, 0);
        db = std::make_unique<Db>(app.ctx.MainDBPath);
    }
    LoanDisc disc(Category category, int number) const { return *findLoanDisc(*db, category, number); }
    qint64 addAudio(int number, const QString& title, const QVariant& album = {})
    {
        db->exec("INSERT INTO Аудио (Номер, Название, Альбом, Дисков, КодСтиля) VALUES (?, ?, ?, 1, 1)",
                 {number, title, album});
        return disc(Category::Audio, number).key;
    }
    qint64 addDvd(int number, const QString& title)
    {
        db->exec("INSERT INTO DVD (Номер, Название, Дисков, КодЖанр) VALUES (?, ?, 1, 1)", {number, title});
        return disc(Category::Dvd, number).key;
    }
    // A loan written as the past left it.
    void pastLoan(const QString& name, Category category, qint64 key, const QVariant& due, const QVariant& returned)
    {
        db->exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВыдачи, ДатаВозврата, "
                 "ДатаВозвратаРеальная, Долг) VALUES (?, ?, ?, ?, ?, ?, ?)",
                 {borrowerFor(*db, name), key, categoryInfo(category).code, dateValue(QDate(2026, 1, 1)), due,
                  returned, returned.isNull() ? kTrue : kFalse});
    }
    int openLoansOf(Category category, qint64 key) const
    {
        return db->scalar("SELECT COUNT(*) FROM Должники WHERE КодДиска = ? AND Категория = ? AND Долг <> 0",
                          {key, categoryInfo(category).code})
            .toInt();
    }
    bool lent(Category category, int number) const { return disc(category, number).lent; }

    test::TestApp app;
    std::unique_ptr<Db> db;
};

QVariant day(int y, int m, int d)
{
    return dateValue(QDate(y, m, d));
}

} // namespace

class tst_loanledger : public QObject
{
    Q_OBJECT

private slots:
    void daysWords_data()
    {
        QTest::addColumn<int>("days");
        QTest::addColumn<QString>("text");
        for (const auto& [days, text] : std::initializer_list<std::pair<int, const char*>>{
                 {1, "1 день"},     {2, "2 дня"},     {4, "4 дня"},       {5, "5 дней"},
                 {10, "10 дней"},   {11, "11 дней"},  {14, "14 дней"},    {19, "19 дней"},
                 {21, "21 день"},   {22, "22 дня"},   {111, "111 день"},  {112, "112 дня"},
                 {114, "114 дня"},  {115, "115 дней"}, {1001, "1001 день"}}) {
            QTest::newRow(text) << days << QString::fromUtf8(text);
        }
    }

    void daysWords()
    {
        QFETCH(int, days);
        QFETCH(QString, text);
        QCOMPARE(daysText(days), text);
    }

    void roundsHalfToEven_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("rounded");
        QTest::newRow("2,5") << 2.5 << 2;
        QTest::newRow("3,5") << 3.5 << 4;
        QTest::newRow("0,5") << 0.5 << 0;
        QTest::newRow("2,4") << 2.4 << 2;
        QTest::newRow("2,6") << 2.6 << 3;
        QTest::newRow("10") << 10.0 << 10;
    }

    void roundsHalfToEven()
    {
        QFETCH(double, value);
        QFETCH(int, rounded);
        QCOMPARE(roundHalfEven(value), rounded);
    }

    void lendAndReturnKeepTheMarkAndTheLedgerTogether()
    {
        Ledger l;
        const qint64 key = l.addAudio(12, "Кино", "Группа крови");
        const QString name = QStringLiteral("O'Brien \"Бес\" [1]");
        lendDisc(*l.db, l.disc(Category::Audio, 12), name, QDate(2026, 12, 1), kToday);
        QVERIFY(l.lent(Category::Audio, 12));
        QCOMPARE(l.openLoansOf(Category::Audio, key), 1);
        QCOMPARE(l.db->scalar("SELECT Телефон FROM ИменаДолжников WHERE Имя = ?", {name}).toString(), "нет");
        QCOMPARE(dateFrom(l.db->scalar("SELECT ДатаВыдачи FROM Должники")), kToday);

        returnDisc(*l.db, Category::Audio, key, QDate(2026, 12, 5));
        QVERIFY(!l.lent(Category::Audio, 12));
        QCOMPARE(l.openLoansOf(Category::Audio, key), 0);

        // The second loan of the disc, to the same borrower: his row is found again, and
        // its return closes the newest loan only.
        lendDisc(*l.db, l.disc(Category::Audio, 12), name, std::nullopt, QDate(2026, 12, 10));
        QCOMPARE(l.db->scalar("SELECT COUNT(*) FROM ИменаДолжников").toInt(), 1);
        returnDisc(*l.db, Category::Audio, key, QDate(2026, 12, 20));
        QCOMPARE(l.db->texts("SELECT ДатаВозвратаРеальная FROM Должники ORDER BY КодДолжника"),
                 (QStringList{"2026-12-05", "2026-12-20"}));
    }

    void aNewSpellingIsANewBorrower()
    {
        Ledger l;
        const qint64 first = borrowerFor(*l.db, "Анна");
        QCOMPARE(borrowerFor(*l.db, "Анна"), first);
        QCOMPARE(borrowerFor(*l.db, "анна"), first); // letter case aside, as the catalogue compares
        QVERIFY(borrowerFor(*l.db, "Ана") != first);
        QVERIFY(borrowerFor(*l.db, "Анна ") != first);
    }

    void changeOfTermTouchesTheOpenLoanOnly()
    {
        Ledger l;
        const qint64 key = l.addAudio(1, "Аквариум");
        l.pastLoan("Вера", Category::Audio, key, day(2026, 2, 1), day(2026, 2, 3));
        lendDisc(*l.db, l.disc(Category::Audio, 1), "Вера", QDate(2026, 12, 1), kToday);
        changeLoanTerm(*l.db, Category::Audio, key, std::nullopt);
        QCOMPARE(l.db->texts("SELECT COALESCE(ДатаВозврата, 'без срока') FROM Должники ORDER BY КодДолжника"),
                 (QStringList{"2026-02-01", "без срока"}));
    }

    void overdueStates_data()
    {
        QTest::addColumn<QDate>("due"); // invalid for a loan without term
        QTest::addColumn<bool>("mark");
        QTest::addColumn<QString>("days");
        QTest::newRow("no term") << QDate() << false << "нет";
        QTest::newRow("ahead") << kToday.addDays(1) << false << "нет";
        QTest::newRow("today") << kToday << true << "нет";
        QTest::newRow("yesterday") << kToday.addDays(-1) << true << "1 день";
        QTest::newRow("112 days") << kToday.addDays(-112) << true << "112 дня";
    }

    void overdueStates()
    {
        QFETCH(QDate, due);
        QFETCH(bool, mark);
        QFETCH(QString, days);
        const OverdueState state =
            overdueState(due.isValid() ? std::optional<QDate>(due) : std::nullopt, kToday);
        QCOMPARE(state.mark, mark);
        QCOMPARE(state.days, days);
    }

    void debtorListSortsAndFilters_data()
    {
        QTest::addColumn<int>("sort");
        QTest::addColumn<bool>("descending");
        QTest::addColumn<QString>("category"); // code, or empty for all
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("names");
        // The catalogue's order: Latin before Cyrillic, "ё" with "е".
        QTest::newRow("by name") << 0 << false << "" << "" << QStringList{"O'Brien \"Бес\" [1]", "ёжик", "Олег", "Юля"};
        QTest::newRow("by name desc") << 0 << true << "" << ""
                                      << QStringList{"Юля", "Олег", "ёжик", "O'Brien \"Бес\" [1]"};
        QTest::newRow("by issue") << 1 << false << "" << "" << QStringList{"Юля", "Олег", "O'Brien \"Бес\" [1]", "ёжик"};
        QTest::newRow("by due: no term first") << 2 << false << "" << ""
                                               << QStringList{"ёжик", "Олег", "Юля", "O'Brien \"Бес\" [1]"};
        QTest::newRow("DVD only") << 0 << false << "DVD" << "" << QStringList{"Олег"};
        QTest::newRow("name with brackets") << 0 << false << "" << "[1]" << QStringList{"O'Brien \"Бес\" [1]"};
        QTest::newRow("name, letter case aside") << 0 << false << "" << "бЕс" << QStringList{"O'Brien \"Бес\" [1]"};
        QTest::newRow("wildcards are plain text") << 0 << false << "" << "*" << QStringList{};
    }

    void debtorListSortsAndFilters()
    {
        QFETCH(int, sort);
        QFETCH(bool, descending);
        QFETCH(QString, category);
        QFETCH(QString, name);
        QFETCH(QStringList, names);
        Ledger l;
        const qint64 a1 = l.addAudio(1, "Один");
        const qint64 a2 = l.addAudio(2, "Два");
        const qint64 a3 = l.addAudio(3, "Три");
        const qint64 d1 = l.addDvd(1, "Фильм");
        l.db->exec("INSERT INTO ИменаДолжников (Имя, Телефон) VALUES ('Закрыт', 'нет')");
        const auto loan = [&](const QString& who, Category c, qint64 key, QDate issued, const QVariant& due) {
            l.db->exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВыдачи, ДатаВозврата, Долг) "
                       "VALUES (?, ?, ?, ?, ?, -1)",
                       {borrowerFor(*l.db, who), key, categoryInfo(c).code, dateValue(issued), due});
        };
        loan("O'Brien \"Бес\" [1]", Category::Audio, a1, QDate(2026, 3, 1), day(2026, 12, 1));
        loan("Юля", Category::Audio, a2, QDate(2026, 1, 1), day(2026, 4, 1));
        loan("Олег", Category::Dvd, d1, QDate(2026, 2, 1), day(2026, 3, 1));
        loan("ёжик", Category::Audio, a3, QDate(2026, 5, 1), QVariant());
        l.pastLoan("Закрыт", Category::Audio, a1, day(2025, 1, 1), day(2025, 1, 2));

        DueFilter filter;
        if (!category.isEmpty()) {
            filter.category = categoryByCode(category)->category;
        }
        filter.nameContains = name;
        QStringList shown;
        for (const OpenLoan& open : openLoans(*l.db, static_cast<DueSort>(sort), descending, filter)) {
            shown.append(open.name);
        }
        QCOMPARE(shown, names);
    }

    void lendingWarningFromBadUp_data()
    {
        QTest::addColumn<int>("daysLate"); // of one returned loan, beside one open loan
        QTest::addColumn<QString>("warning");
        QTest::newRow("10 / 2 = 5: none") << 10 << "";
        QTest::newRow("13 / 2 = 6,5 -> 6") << 13 << "Плохой";
        QTest::newRow("42 / 2 = 21") << 42 << "Ужасный!!!";
        QTest::newRow("102 / 2 = 51") << 102 << "Хуже некуда...";
    }

    void lendingWarningFromBadUp()
    {
        QFETCH(int, daysLate);
        QFETCH(QString, warning);
        Ledger l;
        const qint64 a1 = l.addAudio(1, "Один");
        const QDate due(2026, 1, 1);
        l.pastLoan("Пётр", Category::Audio, a1, dateValue(due), dateValue(due.addDays(daysLate)));
        l.pastLoan("Пётр", Category::Audio, a1, QVariant(), QVariant());
        QCOMPARE(lendingWarning(*l.db, "Пётр", kToday), warning);
        QCOMPARE(lendingWarning(*l.db, "Новое имя", kToday), "");
    }
};

VINORA_TEST_MAIN(tst_loanledger)
#include "tst_loanledger.moc"
