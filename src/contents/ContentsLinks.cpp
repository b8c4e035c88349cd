#include "contents/ContentsLinks.h"

#include "frame/AppContext.h"
#include "store/Db.h"
#include "store/Schema.h"

#include <QStringList>

namespace vinora {
namespace {

struct CatalogueTable
{
    QString table;
    QString keyField;
};

CatalogueTable catalogueTable(ContentsKind kind)
{
    return kind == ContentsKind::Files
               ? CatalogueTable{QStringLiteral("Компьютер"), QStringLiteral("КодКомпьютерныйДиск")}
               : CatalogueTable{QStringLiteral("Аудио"), QStringLiteral("КодАудиоДиск")};
}

QString contentsPath(const AppContext& ctx, ContentsKind kind)
{
    return kind == ContentsKind::Files ? ctx.FilesDBPath : ctx.TracksDBPath;
}

} // namespace

bool listHasOwner(const AppContext& ctx, ContentsKind kind, const QString& id)
{
    QStringList where;
    QVariantList values;
    for (int k = 1; k <= 6; ++k) {
        where.append(QStringLiteral("ДискID%1 = ?").arg(k));
        values.append(id);
    }
    const Db db(ctx.MainDBPath, Db::Access::ReadOnly);
    return db.scalar(QStringLiteral("SELECT COUNT(*) FROM ") + quoted(catalogueTable(kind).table) +
                         QStringLiteral(" WHERE ") + where.join(QStringLiteral(" OR ")),
                     values)
               .toInt() > 0;
}

void writeDiscSlot(AppContext& ctx, ContentsKind kind, int number, int slot,
                   const QList<QPair<QString, QVariant>>& fields)
{
    if (slot < 1 || slot > 6 || fields.isEmpty()) {
        return;
    }
    QStringList set;
    QVariantList values;
    for (const auto& [name, value] : fields) {
        set.append(quoted(name) + QStringLiteral(" = ?"));
        values.append(value);
    }
    values.append(number);
    const CatalogueTable target = catalogueTable(kind);
    const Db db(ctx.MainDBPath);
    db.exec(QStringLiteral("UPDATE ") + quoted(target.table) + QStringLiteral(" SET ") +
                set.join(QStringLiteral(", ")) + QStringLiteral(" WHERE ") + quoted(target.keyField) +
                QStringLiteral(" = (SELECT ") + quoted(target.keyField) + QStringLiteral(" FROM ") +
                quoted(target.table) + QStringLiteral(" WHERE Номер = ? ORDER BY 1 LIMIT 1)"),
            values);
    const QString listField = QStringLiteral("ДискID%1").arg(slot);
    for (const auto& [name, value] : fields) {
        if (name == listField) {
            ctx.DiscIDSlots[static_cast<std::size_t>(slot - 1)] = value.toString();
        }
    }
}

ListCreation createList(const AppContext& ctx, ContentsKind kind, const QString& id, bool ask)
{
    const Db contents(contentsPath(ctx, kind));
    const ContentsLists lists(contents, kind);
    if (!lists.exists(id)) {
        lists.create(id);
        return ListCreation::Created;
    }
    if (!ask) {
        return ListCreation::Exists;
    }
    if (listHasOwner(ctx, kind, id)) {
        return ListCreation::Owned;
    }
    // A list that no disc owns is an orphan: it makes room without a question.
    lists.drop(id);
    lists.create(id);
    return ListCreation::Created;
}

void dropListIfAny(const AppContext& ctx, ContentsKind kind, const QString& id)
{
    const Db contents(contentsPath(ctx, kind));
    const ContentsLists lists(contents, kind);
    if (lists.exists(id)) {
        lists.drop(id);
    }
}

} // namespace vinora
