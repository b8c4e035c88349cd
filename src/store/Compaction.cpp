#include "store/Compaction.h"

#include "frame/AppContext.h"
#include "store/DatabaseLock.h"
#include "store/Db.h"
#include "store/SearchIndex.h"

#include <QFileInfo>

namespace vinora {

bool compactDatabases(const AppContext& ctx)
{
    const auto alone = DatabaseLock::tryAcquire(ctx.MainDBPath, DatabaseLock::Mode::Exclusive);
    if (!alone) {
        return false;
    }
    Db(ctx.MainDBPath).exec(QStringLiteral("VACUUM"));
    vacuumContents(Db(ctx.FilesDBPath), ContentsKind::Files);
    vacuumContents(Db(ctx.TracksDBPath), ContentsKind::Tracks);
    return true;
}

qint64 databasesSize(const AppContext& ctx)
{
    qint64 total = 0;
    for (const QString& database : {ctx.MainDBPath, ctx.FilesDBPath, ctx.TracksDBPath}) {
        total += QFileInfo(database).size();
    }
    return total;
}

} // namespace vinora
