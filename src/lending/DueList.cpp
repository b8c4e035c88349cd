#include "lending/DueList.h"

#include "lending/LoanLedger.h"
#include "store/Db.h"

#include <QSqlQuery>

namespace vinora {

QList<OpenLoan> openLoans(const Db& db, DueSort sort, bool descending, const DueFilter& filter)
{
    QString sql = QStringLiteral(
        "SELECT l.КодДолжника, n.КодИмени, n.Имя, n.Телефон, l.Категория, l.КодДиска, l.ДатаВыдачи, "
        "l.ДатаВозврата FROM Должники l JOIN ИменаДолжников n ON l.КодИмяДолжника = n.КодИмени "
        "WHERE l.Долг <> 0");
    QVariantList values;
    if (filter.category) {
        sql += QStringLiteral(" AND l.Категория = ?");
        values.append(categoryInfo(*filter.category).code);
    }
    if (!filter.nameContains.isEmpty()) {
        sql += QStringLiteral(" AND instr(lower(n.Имя), lower(?)) > 0");
        values.append(filter.nameContains);
    }
    static const char* const orders[] = {"n.Имя", "l.ДатаВыдачи", "l.ДатаВозврата"};
    const QString direction = descending ? QStringLiteral(" DESC") : QString();
    sql += QStringLiteral(" ORDER BY ") + QString::fromUtf8(orders[static_cast<int>(sort)]) + direction +
           QStringLiteral(", l.КодДолжника") + direction;

    QList<OpenLoan> loans;
    QSqlQuery rows = db.query(sql, values);
    while (rows.next()) {
        const CategoryInfo* info = categoryByCode(rows.value(4).toString());
        if (info == nullptr) {
            continue; // a row of no catalogue belongs to no list
        }
        OpenLoan loan;
        loan.loan = rows.value(0).toLongLong();
        loan.borrower = rows.value(1).toLongLong();
        loan.name = rows.value(2).toString();
        loan.phone = rows.value(3).toString();
        loan.category = info->category;
        loan.discKey = rows.value(5).toLongLong();
        loan.issued = dateFrom(rows.value(6));
        if (!rows.value(7).isNull()) {
            loan.due = dateFrom(rows.value(7));
        }
        loans.append(loan);
    }
    return loans;
}

OverdueState overdueState(const std::optional<QDate>& due, const QDate& today)
{
    if (!due || *due > today) {
        return {false, QStringLiteral("нет")};
    }
    if (*due == today) {
        return {true, QStringLiteral("нет")};
    }
    return {true, daysText(static_cast<int>(due->daysTo(today)))};
}

QString setBorrowerPhone(const Db& db, qint64 borrower, const QString& phone)
{
    const QString stored = phone.isEmpty() ? QStringLiteral("нет") : phone;
    db.exec(QStringLiteral("UPDATE ИменаДолжников SET Телефон = ? WHERE КодИмени = ?"), {stored, borrower});
    return stored;
}

} // namespace vinora
