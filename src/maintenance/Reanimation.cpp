#include "maintenance/Reanimation.h"

#include "frame/AppContext.h"
#include "store/Category.h"
#include "store/DatabaseLock.h"
#include "store/Db.h"
#include "store/FileErrors.h"
#include "store/Reanimator.h"
#include "store/Schema.h"

#include <QSqlQuery>
#include <optional>

namespace vinora {
namespace {

const CategoryInfo& catalogueOf(int kind)
{
    return categoryInfo(kind == 1 ? Category::Computer : Category::Audio);
}

QString contentsPathOf(const AppContext& ctx, int kind)
{
    return kind == 1 ? ctx.FilesDBPath : ctx.TracksDBPath;
}

std::optional<DatabaseLock> lockAlone(const AppContext& ctx)
{
    auto alone = DatabaseLock::tryAcquire(ctx.MainDBPath, DatabaseLock::Mode::Exclusive);
    if (!alone) {
        throw databasesBusyError();
    }
    return alone;
}

} // namespace

ContentsKind reanimationContents(int kind)
{
    return kind == 1 ? ContentsKind::Files : ContentsKind::Tracks;
}

bool CheckTable(const Db& contentsDb, int kind, const QString& name)
{
    return !ContentsLists(contentsDb, reanimationContents(kind)).exists(name);
}

RepairReport Reanimation(const AppContext& ctx, int kind, bool apply)
{
    std::optional<DatabaseLock> alone;
    if (apply) {
        alone = lockAlone(ctx);
    }
    const CategoryInfo& info = catalogueOf(kind);
    const Db contents(contentsPathOf(ctx, kind), Db::Access::ReadOnly);
    const Db db(ctx.MainDBPath, apply ? Db::Access::ReadWrite : Db::Access::ReadOnly);
    std::optional<Transaction> transaction;
    if (apply) {
        transaction.emplace(db);
    }
    QStringList idFields;
    for (int k = 1; k <= 6; ++k) {
        idFields.append(QStringLiteral("ДискID%1").arg(k));
    }
    QList<QVariantList> rows;
    {
        QSqlQuery query = db.query(QStringLiteral("SELECT ") + quoted(info.keyField) +
                                   QStringLiteral(", \"Номер\", \"Дисков\", ") +
                                   [&] {
                                       QStringList fields;
                                       for (const QString& field : idFields) {
                                           fields.append(quoted(field));
                                       }
                                       return fields.join(QStringLiteral(", "));
                                   }() +
                                   QStringLiteral(" FROM ") + quoted(info.table) +
                                   QStringLiteral(" ORDER BY ") + quoted(info.keyField));
        while (query.next()) {
            QVariantList row;
            for (int i = 0; i < 3 + idFields.size(); ++i) {
                row.append(query.value(i));
            }
            rows.append(row);
        }
    }
    RepairReport report;
    const QString where = QStringLiteral(" WHERE ") + quoted(info.keyField) + QStringLiteral(" = ?");
    for (const QVariantList& row : rows) {
        const QString disc = info.table + QStringLiteral(" № ") + row.at(1).toString();
        if (!row.at(2).isNull() && row.at(2).toInt() == 0) {
            ++report.errors;
            report.found.append(disc + QStringLiteral(": Дисков 0"));
            if (apply) {
                db.exec(QStringLiteral("UPDATE ") + quoted(info.table) +
                            QStringLiteral(" SET \"Дисков\" = 1") + where,
                        {row.at(0)});
            }
        }
        for (int k = 0; k < idFields.size(); ++k) {
            const QVariant id = row.at(3 + k);
            if (id.isNull() || !CheckTable(contents, kind, id.toString())) {
                continue;
            }
            ++report.errors;
            report.found.append(disc + QStringLiteral(": ") + idFields[k] + QStringLiteral(" '") +
                                id.toString() + QStringLiteral("' - нет такого списка"));
            if (apply) {
                db.exec(QStringLiteral("UPDATE ") + quoted(info.table) + QStringLiteral(" SET ") +
                            quoted(idFields[k]) + QStringLiteral(" = NULL") + where,
                        {row.at(0)});
            }
        }
    }
    if (transaction) {
        transaction->commit();
    }
    return report;
}

QString reanimationMessage(const RepairReport& report)
{
    if (report.errors > 0) {
        return QStringLiteral("Операция успешно завершена!\nНайдено и исправлено ошибок: ") +
               QString::number(report.errors);
    }
    return QStringLiteral("Ошибок не найдено!");
}

void ReanimationReCreate(AppContext& ctx, int kind)
{
    const auto alone = lockAlone(ctx);
    const CategoryInfo& info = catalogueOf(kind);
    {
        const Db db(ctx.MainDBPath);
        QStringList cleared;
        for (int k = 1; k <= 6; ++k) {
            cleared.append(quoted(QStringLiteral("ДискID%1").arg(k)) + QStringLiteral(" = NULL"));
        }
        db.exec(QStringLiteral("UPDATE ") + quoted(info.table) + QStringLiteral(" SET ") +
                cleared.join(QStringLiteral(", ")));
    }
    if (kind == 1) {
        createFilesDatabase(ctx.FilesDBPath);
    } else {
        createTracksDatabase(ctx.TracksDBPath);
    }
}

void fullReanimation(AppContext& ctx)
{
    const auto alone = lockAlone(ctx);
    removeFile(ctx.appFile(QStringLiteral("vinora.db")));
    createMainDatabase(ctx.MainDBPath);
    createFilesDatabase(ctx.FilesDBPath);
    createTracksDatabase(ctx.TracksDBPath);
}

} // namespace vinora
