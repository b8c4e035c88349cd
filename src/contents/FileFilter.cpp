#include "contents/FileFilter.h"

#include "frame/AppError.h"
#include "store/Db.h"
#include "store/Schema.h"

namespace vinora {

QString filterTableName(FilterTable table)
{
    return table == FilterTable::Exclude ? QStringLiteral("Фильтр1") : QStringLiteral("Фильтр2");
}

QStringList FullArrayFileFiltr(const Db& filesDb, FilterTable table)
{
    QStringList entries;
    QSqlQuery rows = filesDb.query(QStringLiteral("SELECT Файл FROM ") + quoted(filterTableName(table)) +
                                   QStringLiteral(" WHERE Use <> 0 ORDER BY rowid"));
    while (rows.next()) {
        if (entries.size() == 50) {
            throw AppError(9, QStringLiteral("Subscript out of range"));
        }
        entries.append(rows.value(0).toString());
    }
    return entries;
}

bool skipsFile(const QStringList& entries, FilterTable table, const QString& name)
{
    const bool wanted = table == FilterTable::Include;
    for (const QString& entry : entries) {
        if (entry.isEmpty()) {
            break;
        }
        if (name.contains(entry, Qt::CaseInsensitive)) {
            return !wanted;
        }
    }
    return wanted;
}

} // namespace vinora
