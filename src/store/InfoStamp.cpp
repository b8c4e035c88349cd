#include "store/InfoStamp.h"

#include "store/Db.h"
#include "store/Schema.h"

namespace vinora {
namespace {

const QString kInfoTable = QStringLiteral("\"_Информация\"");

void stamp(const Db& db, const QString& field, const QDate& today)
{
    const bool hasRow = db.scalar(QStringLiteral("SELECT count(*) FROM ") + kInfoTable).toInt() > 0;
    QString sql;
    if (hasRow) {
        sql = QStringLiteral("UPDATE ") + kInfoTable + QStringLiteral(" SET ") + quoted(field) +
              QStringLiteral(" = ? WHERE rowid = (SELECT min(rowid) FROM ") + kInfoTable + u')';
    } else {
        sql = QStringLiteral("INSERT INTO ") + kInfoTable + u'(' + quoted(field) +
              QStringLiteral(") VALUES (?)");
    }
    db.exec(sql, {dateValue(today)});
}

} // namespace

void StampCatalogueUpdate(const Db& db, Category category, const QDate& today)
{
    stamp(db, categoryInfo(category).stampField, today);
}

void StampBackup(const Db& db, const QDate& today)
{
    stamp(db, QStringLiteral("РезервнаяКопия"), today);
}

QDate readStamp(const Db& db, const QString& field)
{
    return dateFrom(db.scalar(QStringLiteral("SELECT ") + quoted(field) + QStringLiteral(" FROM ") +
                              kInfoTable + QStringLiteral(" ORDER BY rowid LIMIT 1")));
}

} // namespace vinora
