#include "lending/BorrowerRating.h"

#include "lending/LoanLedger.h"
#include "store/Db.h"

#include <QSqlQuery>
#include <cmath>

namespace vinora {
namespace {

// Days from the promised day to the real return; a loan without term is measured against
// today, so it never counts as late.
int daysLate(const QVariant& due, const QVariant& returned, const QDate& today)
{
    const QDate promised = due.isNull() ? today : dateFrom(due);
    return static_cast<int>(promised.daysTo(dateFrom(returned)));
}

} // namespace

int roundHalfEven(double value)
{
    const double whole = std::floor(value);
    const double fraction = value - whole;
    if (fraction > 0.5 || (fraction == 0.5 && std::fmod(whole, 2.0) != 0.0)) {
        return static_cast<int>(whole) + 1;
    }
    return static_cast<int>(whole);
}

QString ratingWord(int rating)
{
    if (rating <= 0) {
        return QStringLiteral("Хороший");
    }
    if (rating <= 5) {
        return QStringLiteral("Нормальный");
    }
    if (rating <= 20) {
        return QStringLiteral("Плохой");
    }
    if (rating <= 50) {
        return QStringLiteral("Ужасный!!!");
    }
    return QStringLiteral("Хуже некуда...");
}

BorrowerRecord borrowerRecord(const Db& db, qint64 borrower, const RatingFilter& filter, const QDate& today)
{
    BorrowerRecord record;
    // One query for the lot: the disc's number comes from its catalogue by a join (Null for
    // a disc deleted since).
    QSqlQuery loans = db.query(
        QStringLiteral("SELECT l.КодДолжника, l.Категория, l.ДатаВозврата, l.ДатаВозвратаРеальная, l.Долг, "
                       "COALESCE(a.Номер, p.Номер, d.Номер) FROM Должники l "
                       "LEFT JOIN Аудио a ON l.Категория = 'AD' AND a.КодАудиоДиск = l.КодДиска "
                       "LEFT JOIN Компьютер p ON l.Категория = 'PC' AND p.КодКомпьютерныйДиск = l.КодДиска "
                       "LEFT JOIN DVD d ON l.Категория = 'DVD' AND d.КодDVDДиск = l.КодДиска "
                       "WHERE l.КодИмяДолжника = ? ORDER BY l.КодДолжника"),
        {borrower});
    while (loans.next()) {
        const CategoryInfo* info = categoryByCode(loans.value(1).toString());
        const bool open = loans.value(4).toInt() != 0;
        if (info == nullptr || (filter.only && *filter.only != info->category) || (filter.outOnly && !open)) {
            continue;
        }
        RatingLine line;
        line.loan = loans.value(0).toLongLong();
        line.category = info->category;
        line.number = loans.value(5).isNull() ? QStringLiteral("-") : loans.value(5).toString();
        if (open) {
            line.delay = QStringLiteral("?");
            ++record.out;
        } else {
            const int days = daysLate(loans.value(2), loans.value(3), today);
            line.delay = days < 1 ? QStringLiteral("нет") : QString::number(days);
            record.totalDays += qMax(days, 0);
        }
        record.lines.append(line);
    }
    if (!record.lines.isEmpty() && !filter.outOnly) {
        const double average = static_cast<double>(record.totalDays) / static_cast<double>(record.lines.size());
        record.rating = qMin(roundHalfEven(average), kRatingCap);
    }
    return record;
}

QString lendingWarning(const Db& db, const QString& name, const QDate& today)
{
    const std::optional<qint64> borrower = findBorrower(db, name);
    if (!borrower) {
        return {};
    }
    QSqlQuery loans = db.query(
        QStringLiteral("SELECT ДатаВозврата, ДатаВозвратаРеальная FROM Должники WHERE КодИмяДолжника = ?"),
        {*borrower});
    int count = 0;
    int sum = 0;
    while (loans.next()) {
        ++count;
        if (!loans.value(1).isNull()) {
            sum += qMax(daysLate(loans.value(0), loans.value(1), today), 0);
        }
    }
    if (count == 0) {
        return {};
    }
    const int rating = roundHalfEven(static_cast<double>(sum) / count);
    return rating <= 5 ? QString() : ratingWord(rating);
}

} // namespace vinora
