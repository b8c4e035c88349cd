#include "mainwindow/DashboardData.h"

#include "store/Db.h"
#include "store/InfoStamp.h"
#include "store/Schema.h"

#include <QLocale>

namespace vinora {

DashboardData readDashboard(const Db& db)
{
    DashboardData data;
    for (const Category category : allCategories()) {
        const CategoryInfo& info = categoryInfo(category);
        CatalogueSummary& summary = data[static_cast<std::size_t>(category)];
        summary.discs = db.scalar(QStringLiteral("SELECT COUNT(*) FROM ") + quoted(info.table)).toInt();
        summary.updated = readStamp(db, info.stampField);
        summary.onLoan =
            db.scalar(QStringLiteral("SELECT COUNT(*) FROM Должники WHERE Категория = ? AND Долг <> 0"),
                      {info.code})
                .toInt();
    }
    return data;
}

void countOverdue(const Db& db, const QDate& today, DashboardData& data)
{
    QSqlQuery loans = db.query(QStringLiteral("SELECT Категория, COUNT(*) FROM Должники "
                                              "WHERE Долг <> 0 AND ДатаВозврата <= ? GROUP BY Категория"),
                               {dateValue(today)});
    while (loans.next()) {
        if (const CategoryInfo* info = categoryByCode(loans.value(0).toString())) {
            data[static_cast<std::size_t>(info->category)].overdue = loans.value(1).toInt();
        }
    }
}

QString updateDateText(const QDate& date)
{
    return date.isValid() ? QLocale().toString(date, QStringLiteral("d MMMM yyyy г.")) : QStringLiteral("-");
}

} // namespace vinora
