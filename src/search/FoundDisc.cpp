#include "search/FoundDisc.h"

#include "store/Category.h"
#include "store/Db.h"
#include "store/Schema.h"

namespace vinora {

std::optional<FoundDisc> readFoundDisc(const QString& mainDatabase, bool tracks, int number)
{
    const CategoryInfo& info = categoryInfo(tracks ? Category::Audio : Category::Computer);
    const Db db(mainDatabase, Db::Access::ReadOnly);
    QSqlQuery row =
        db.query(QStringLiteral("SELECT Название, Дисков, ДискID1, ДискID2, ДискID3, ДискID4, "
                                "ДискID5, ДискID6") +
                     (tracks ? QStringLiteral(", Альбом") : QString()) + QStringLiteral(" FROM ") +
                     quoted(info.table) + QStringLiteral(" WHERE Номер = ? ORDER BY ") +
                     quoted(info.keyField) + QStringLiteral(" LIMIT 1"),
                 {number});
    if (!row.next()) {
        return std::nullopt;
    }
    FoundDisc disc;
    disc.number = number;
    disc.name = row.value(0).toString();
    disc.discs = row.value(1).toInt();
    for (int k = 0; k < 6; ++k) {
        disc.ids[static_cast<std::size_t>(k)] = row.value(2 + k).toString();
    }
    if (tracks) {
        disc.album = row.value(8).toString();
    }
    return disc;
}

} // namespace vinora
