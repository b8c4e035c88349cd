#include "store/DatabaseHealth.h"

#include "frame/AppContext.h"
#include "store/Db.h"

#include <QStringList>

namespace vinora {
namespace {

std::optional<DatabaseFault> faultOf(const QString& path, const QStringList& tables)
{
    try {
        const Db db(path, Db::Access::ReadOnly);
        for (const QString& table : tables) {
            if (!db.tableExists(table)) {
                return DatabaseFault{path, QStringLiteral("в файле нет таблицы ") + table};
            }
        }
        return std::nullopt;
    } catch (const AppError& error) {
        // A missing file or one that cannot be written is told where it is opened.
        if (error.number() == err::CannotOpenFile || error.number() == err::CannotFindFile ||
            error.number() == err::InvalidPath) {
            return std::nullopt;
        }
        return DatabaseFault{path, error.description()};
    }
}

} // namespace

std::optional<DatabaseFault> firstDamagedDatabase(const AppContext& ctx)
{
    if (auto fault = faultOf(ctx.MainDBPath, {QStringLiteral("Аудио"), QStringLiteral("Компьютер"),
                                              QStringLiteral("DVD"), QStringLiteral("Стиль")})) {
        return fault;
    }
    if (auto fault = faultOf(ctx.FilesDBPath, {QStringLiteral("Списки"), QStringLiteral("Файлы")})) {
        return fault;
    }
    return faultOf(ctx.TracksDBPath, {QStringLiteral("Списки"), QStringLiteral("Треки")});
}

} // namespace vinora
