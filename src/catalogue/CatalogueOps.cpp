#include "catalogue/CatalogueOps.h"

#include "frame/AppContext.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/InfoStamp.h"
#include "store/Schema.h"

#include <QDir>
#include <QFile>
#include <QImageReader>

namespace vinora {

QString coverPath(const AppContext& ctx, const CatalogueKind& kind, int number)
{
    return QDir(ctx.appFile(QStringLiteral("box")))
        .filePath(kind.info().coverPrefix + QString::number(number) + QStringLiteral(".box"));
}

bool isReadablePicture(const QString& path)
{
    QImageReader reader(path);
    return reader.canRead() && !reader.read().isNull();
}

void setCover(const AppContext& ctx, const CatalogueKind& kind, int number, const QString& picture)
{
    QDir().mkpath(ctx.appFile(QStringLiteral("box")));
    const QString cover = coverPath(ctx, kind, number);
    const QString partial = cover + QStringLiteral(".part");
    QFile::remove(partial);
    if (!QFile::copy(picture, partial)) {
        throw AppError(err::PathFileAccess, QStringLiteral("Path/File access error: ") + cover);
    }
    QFile::remove(cover);
    if (!QFile::rename(partial, cover)) {
        QFile::remove(partial);
        throw AppError(err::PathFileAccess, QStringLiteral("Path/File access error: ") + cover);
    }
}

QString loanHolderName(const Db& db, const CatalogueKind& kind, qint64 key)
{
    return db
        .scalar(
            QStringLiteral(
                "SELECT n.Имя FROM Должники l JOIN ИменаДолжников n ON n.КодИмени = l.КодИмяДолжника "
                "WHERE l.КодДиска = ? AND l.Категория = ? AND l.Долг <> 0 ORDER BY l.КодДолжника LIMIT 1"),
            {key, kind.info().code})
        .toString();
}

void deleteDisc(AppContext& ctx, const CatalogueKind& kind, qint64 key, int number,
                const QStringList& listIds)
{
    QFile::remove(coverPath(ctx, kind, number));
    if (kind.contents) {
        Db contents(*kind.contents == ContentsKind::Tracks ? ctx.TracksDBPath : ctx.FilesDBPath);
        const ContentsLists lists(contents, *kind.contents);
        for (const QString& id : listIds) {
            if (!id.isEmpty() && lists.exists(id)) {
                lists.drop(id);
            }
        }
    }
    Db db(ctx.MainDBPath);
    Transaction transaction(db);
    db.exec(QStringLiteral("DELETE FROM ") + quoted(kind.info().table) + QStringLiteral(" WHERE ") +
                quoted(kind.info().keyField) + QStringLiteral(" = ?"),
            {key});
    StampCatalogueUpdate(db, kind.category, ctx.clock().today());
    transaction.commit();
}

std::optional<DiscPlace> findDiscPlace(const Db& db, const CatalogueKind& kind, const QString& id)
{
    if (id.isEmpty()) {
        return std::nullopt;
    }
    QStringList fields;
    QStringList where;
    QVariantList values;
    for (int k = 1; k <= kind.autoRespSlots; ++k) {
        const QString field = quoted(QStringLiteral("ДискID%1_d").arg(k));
        fields.append(field);
        where.append(field + QStringLiteral(" = ?"));
        values.append(id);
    }
    QSqlQuery row = db.query(QStringLiteral("SELECT Номер, ") + fields.join(u',') + QStringLiteral(" FROM ") +
                                 quoted(kind.info().table) + QStringLiteral(" WHERE ") +
                                 where.join(QStringLiteral(" OR ")) + QStringLiteral(" ORDER BY ") +
                                 quoted(kind.info().keyField) + QStringLiteral(" LIMIT 1"),
                             values);
    if (!row.next()) {
        return std::nullopt;
    }
    DiscPlace place{row.value(0).toInt(), 1};
    // Slots 2 on are tested in order and the last that holds it counts.
    for (int k = 2; k <= kind.autoRespSlots; ++k) {
        if (row.value(k).toString().compare(id, Qt::CaseInsensitive) == 0) {
            place.slot = k;
        }
    }
    return place;
}

} // namespace vinora
