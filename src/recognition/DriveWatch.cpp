#include "recognition/DriveWatch.h"

#include "store/Db.h"
#include "store/Schema.h"

#include <QStringList>

namespace vinora {

std::optional<BoundDisc> findBoundDisc(const Db& db, Category category, const QString& id)
{
    const CategoryInfo& info = categoryInfo(category);
    QStringList bindingFields;
    QStringList where;
    QVariantList values;
    for (int k = 1; k <= 6; ++k) {
        const QString field = quoted(QStringLiteral("ДискID%1_d").arg(k));
        bindingFields.append(field);
        where.append(field + QStringLiteral(" = ?"));
        values.append(id);
    }
    const QString album = category == Category::Audio ? QStringLiteral("Альбом") : QStringLiteral("NULL");
    QSqlQuery row =
        db.query(QStringLiteral("SELECT Номер, Дисков, Название, ") + album + u',' +
                     bindingFields.join(u',') + QStringLiteral(" FROM ") + quoted(info.table) +
                     QStringLiteral(" WHERE ") + where.join(QStringLiteral(" OR ")) +
                     QStringLiteral(" ORDER BY ") + quoted(info.keyField) + QStringLiteral(" LIMIT 1"),
                 values);
    if (!row.next()) {
        return std::nullopt;
    }
    BoundDisc disc;
    disc.number = row.value(0).toInt();
    disc.discs = row.value(1).toInt();
    disc.title = row.value(2).toString();
    const QString albumText = row.value(3).toString();
    if (!albumText.isEmpty()) {
        disc.title += QStringLiteral(" - ") + albumText;
    }
    for (int k = 1; k <= 6; ++k) {
        if (row.value(3 + k).toString().compare(id, Qt::CaseInsensitive) == 0) {
            disc.slot = k;
        }
    }
    return disc;
}

bool unbindDisc(const Db& db, Category category, const QString& id)
{
    const CategoryInfo& info = categoryInfo(category);
    QStringList where;
    QVariantList values;
    for (int k = 1; k <= 6; ++k) {
        where.append(quoted(QStringLiteral("ДискID%1_d").arg(k)) + QStringLiteral(" = ?"));
        values.append(id);
    }
    const QVariant key =
        db.scalar(QStringLiteral("SELECT ") + quoted(info.keyField) + QStringLiteral(" FROM ") +
                      quoted(info.table) + QStringLiteral(" WHERE ") + where.join(QStringLiteral(" OR ")) +
                      QStringLiteral(" ORDER BY 1 LIMIT 1"),
                  values);
    if (!key.isValid()) {
        return false;
    }
    for (int k = 1; k <= 6; ++k) {
        const QString field = quoted(QStringLiteral("ДискID%1_d").arg(k));
        db.exec(QStringLiteral("UPDATE ") + quoted(info.table) + QStringLiteral(" SET ") + field +
                    QStringLiteral(" = NULL WHERE ") + quoted(info.keyField) + QStringLiteral(" = ? AND ") +
                    field + QStringLiteral(" = ?"),
                {key, id});
    }
    return true;
}

std::optional<int> CheckDiskShare(const Db& db, Category category, const QString& id)
{
    const CategoryInfo& info = categoryInfo(category);
    const QVariant number = db.scalar(QStringLiteral("SELECT Номер FROM ") + quoted(info.table) +
                                          QStringLiteral(" WHERE ДискID1_d = ? ORDER BY ") +
                                          quoted(info.keyField) + QStringLiteral(" LIMIT 1"),
                                      {id});
    return number.isValid() ? std::optional<int>(number.toInt()) : std::nullopt;
}

namespace {
QString firstRowOf(const CategoryInfo& info)
{
    return QStringLiteral(" WHERE ") + quoted(info.keyField) + QStringLiteral(" = (SELECT ") +
           quoted(info.keyField) + QStringLiteral(" FROM ") + quoted(info.table) +
           QStringLiteral(" WHERE Номер = ? ORDER BY 1 LIMIT 1)");
}
} // namespace

QString bindingAt(const Db& db, Category category, int number, int slot)
{
    const CategoryInfo& info = categoryInfo(category);
    return db
        .scalar(QStringLiteral("SELECT ") + quoted(QStringLiteral("ДискID%1_d").arg(slot)) +
                    QStringLiteral(" FROM ") + quoted(info.table) + firstRowOf(info),
                {number})
        .toString();
}

void bindDisc(const Db& db, Category category, int number, int slot, const QString& id)
{
    const CategoryInfo& info = categoryInfo(category);
    db.exec(QStringLiteral("UPDATE ") + quoted(info.table) + QStringLiteral(" SET ") +
                quoted(QStringLiteral("ДискID%1_d").arg(slot)) + QStringLiteral(" = ?") + firstRowOf(info),
            {id, number});
}

QString boundDiscText(const BoundDisc& disc)
{
    const QString head = QStringLiteral("Диск № ") + QString::number(disc.number) +
                         (disc.discs == 1 ? QStringLiteral(":") : QStringLiteral(" (CD%1):").arg(disc.slot));
    return head + u'\n' + disc.title;
}

QString unknownDiscText()
{
    return QStringLiteral("Диск (?)\nне привязан не к одному номеру в каталоге");
}

std::optional<Category> categoryOfKind(const QString& kind)
{
    if (kind == u"AudioCD") {
        return Category::Audio;
    }
    if (kind == u"PcCD") {
        return Category::Computer;
    }
    if (kind == u"DVD") {
        return Category::Dvd;
    }
    return std::nullopt;
}

} // namespace vinora
