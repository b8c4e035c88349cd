#include "lending/LoanLedger.h"

#include "frame/AppError.h"
#include "store/Db.h"
#include "store/Schema.h"

#include <QSqlQuery>

namespace vinora {
namespace {

QString table(Category category)
{
    return quoted(categoryInfo(category).table);
}

QString keyField(Category category)
{
    return quoted(categoryInfo(category).keyField);
}

std::optional<LoanDisc> readDisc(const Db& db, Category category, const QString& where, const QVariant& value)
{
    const bool audio = category == Category::Audio;
    QSqlQuery row = db.query(QStringLiteral("SELECT ") + keyField(category) +
                                 QStringLiteral(", Номер, Название, ") +
                                 (audio ? QStringLiteral("Альбом") : QStringLiteral("NULL")) +
                                 QStringLiteral(", Должник FROM ") + table(category) + QStringLiteral(" WHERE ") +
                                 where + QStringLiteral(" ORDER BY ") + keyField(category) +
                                 QStringLiteral(" LIMIT 1"),
                             {value});
    if (!row.next()) {
        return std::nullopt;
    }
    return LoanDisc{category,
                    row.value(0).toLongLong(),
                    row.value(1).toInt(),
                    row.value(2).toString(),
                    row.value(3).toString(),
                    row.value(4).toInt() != 0};
}

void setLentMark(const Db& db, Category category, qint64 key, bool lent)
{
    db.exec(QStringLiteral("UPDATE ") + table(category) + QStringLiteral(" SET Должник = ? WHERE ") +
                keyField(category) + QStringLiteral(" = ?"),
            {lent ? kTrue : kFalse, key});
}

// The newest loan of the disc, open or not (the ledger's FindLast), or nothing.
std::optional<qint64> newestLoan(const Db& db, Category category, qint64 key)
{
    const QVariant found =
        db.scalar(QStringLiteral("SELECT MAX(КодДолжника) FROM Должники WHERE КодДиска = ? AND Категория = ?"),
                  {key, categoryInfo(category).code});
    return found.isNull() ? std::nullopt : std::optional<qint64>(found.toLongLong());
}

void closeLoan(const Db& db, qint64 loan, const QDate& today)
{
    db.exec(QStringLiteral("UPDATE Должники SET Долг = ?, ДатаВозвратаРеальная = ? WHERE КодДолжника = ?"),
            {kFalse, dateValue(today), loan});
}

QVariant dueValue(const std::optional<QDate>& due)
{
    return due ? dateValue(*due) : QVariant();
}

} // namespace

QString loanCategoryText(Category category)
{
    switch (category) {
    case Category::Audio:
        return QStringLiteral("Аудио диск");
    case Category::Computer:
        return QStringLiteral("Компьютерный диск");
    case Category::Dvd:
        break;
    }
    return QStringLiteral("DVD диск");
}

std::optional<Category> loanCategoryOfText(const QString& text)
{
    for (const Category category : allCategories()) {
        if (loanCategoryText(category) == text) {
            return category;
        }
    }
    return std::nullopt;
}

QString loanDiscTitle(const LoanDisc& disc)
{
    return disc.album.isEmpty() ? disc.title : disc.title + QStringLiteral(" - ") + disc.album;
}

std::optional<LoanDisc> findLoanDisc(const Db& db, Category category, int number)
{
    return readDisc(db, category, QStringLiteral("Номер = ?"), number);
}

std::optional<LoanDisc> loanDiscByKey(const Db& db, Category category, qint64 key)
{
    return readDisc(db, category, keyField(category) + QStringLiteral(" = ?"), key);
}

std::optional<qint64> findBorrower(const Db& db, const QString& name)
{
    // Names compare as the catalogue compares text, letter case aside; any other spelling
    // is another borrower.
    QSqlQuery row =
        db.query(QStringLiteral("SELECT КодИмени FROM ИменаДолжников WHERE Имя = ? ORDER BY КодИмени LIMIT 1"), {name});
    return row.next() ? std::optional<qint64>(row.value(0).toLongLong()) : std::nullopt;
}

qint64 borrowerFor(const Db& db, const QString& name)
{
    if (const std::optional<qint64> known = findBorrower(db, name)) {
        return *known;
    }
    QSqlQuery added =
        db.query(QStringLiteral("INSERT INTO ИменаДолжников (Имя, Телефон) VALUES (?, 'нет')"), {name});
    return added.lastInsertId().toLongLong();
}

void lendDisc(const Db& db, const LoanDisc& disc, const QString& name, std::optional<QDate> due,
              const QDate& today)
{
    Transaction transaction(db);
    const qint64 borrower = borrowerFor(db, name);
    setLentMark(db, disc.category, disc.key, true);
    db.exec(QStringLiteral("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВыдачи, ДатаВозврата, "
                           "Долг) VALUES (?, ?, ?, ?, ?, ?)"),
            {borrower, disc.key, categoryInfo(disc.category).code, dateValue(today), dueValue(due), kTrue});
    transaction.commit();
}

void returnDisc(const Db& db, Category category, qint64 key, const QDate& today)
{
    Transaction transaction(db);
    setLentMark(db, category, key, false);
    if (const std::optional<qint64> loan = newestLoan(db, category, key)) {
        closeLoan(db, *loan, today);
    }
    transaction.commit();
}

void returnLoan(const Db& db, Category category, qint64 key, qint64 loan, const QDate& today)
{
    Transaction transaction(db);
    setLentMark(db, category, key, false);
    closeLoan(db, loan, today);
    transaction.commit();
}

QString closeNewestLoan(const Db& db, Category category, qint64 key, const QDate& today)
{
    Transaction transaction(db);
    const std::optional<qint64> loan = newestLoan(db, category, key);
    if (!loan) {
        return {};
    }
    closeLoan(db, *loan, today);
    const QString name = db.scalar(QStringLiteral("SELECT n.Имя FROM Должники l JOIN ИменаДолжников n ON "
                                                  "n.КодИмени = l.КодИмяДолжника WHERE l.КодДолжника = ?"),
                                   {*loan})
                             .toString();
    transaction.commit();
    return name;
}

void clearLentMark(const Db& db, Category category, qint64 key)
{
    setLentMark(db, category, key, false);
}

void changeLoanTerm(const Db& db, Category category, qint64 key, std::optional<QDate> due)
{
    db.exec(QStringLiteral("UPDATE Должники SET ДатаВозврата = ? WHERE КодДолжника = (SELECT MIN(КодДолжника) "
                           "FROM Должники WHERE КодДиска = ? AND Категория = ? AND Долг <> 0)"),
            {dueValue(due), key, categoryInfo(category).code});
}

QString daysText(int days)
{
    // The teens are looked at as the plain range 11 to 19, so 111 to 114 go by their last
    // digit ("111 день"), as they always have.
    const int last = days % 10;
    const QString word = days >= 11 && days <= 19 ? QStringLiteral(" дней")
                         : last == 1              ? QStringLiteral(" день")
                         : last >= 2 && last <= 4 ? QStringLiteral(" дня")
                                                  : QStringLiteral(" дней");
    return QString::number(days) + word;
}

} // namespace vinora
