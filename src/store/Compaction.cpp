#include "store/Compaction.h"

#include "frame/AppContext.h"
#include "store/Db.h"
#include "store/FileReplace.h"

#include <QFile>
#include <QFileInfo>
#include <utility>
#include <vector>

namespace vinora {
namespace {

std::vector<std::pair<QString, QString>> databasesAndTemporaries(const AppContext& ctx)
{
    return {{ctx.MainDBPath, ctx.appFile(QStringLiteral("~vinora.db"))},
            {ctx.FilesDBPath, ctx.appFile(QStringLiteral("~vinora_files.db"))},
            {ctx.TracksDBPath, ctx.appFile(QStringLiteral("~vinora_tracks.db"))}};
}

} // namespace

void compactDatabases(const AppContext& ctx)
{
    const auto pairs = databasesAndTemporaries(ctx);
    try {
        for (const auto& [database, temporary] : pairs) {
            QFile::remove(temporary);
            Db db(database);
            db.exec(QStringLiteral("VACUUM INTO ?"), {temporary});
        }
        for (const auto& [database, temporary] : pairs) {
            replaceFile(temporary, database);
        }
    } catch (...) {
        for (const auto& [database, temporary] : pairs) {
            QFile::remove(temporary);
        }
        throw;
    }
}

qint64 databasesSize(const AppContext& ctx)
{
    qint64 total = 0;
    for (const auto& [database, temporary] : databasesAndTemporaries(ctx)) {
        total += QFileInfo(database).size();
    }
    return total;
}

} // namespace vinora
