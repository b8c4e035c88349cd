#include "maintenance/DatabaseCheck.h"

#include "frame/AppContext.h"
#include "store/DatabaseLock.h"
#include "store/Db.h"
#include "store/FileErrors.h"
#include "store/Schema.h"
#include "store/SearchIndex.h"

#include <QSqlQuery>

namespace vinora {
namespace {

ContentsKind kindOf(const AppContext& ctx, const QString& path)
{
    return path == ctx.FilesDBPath ? ContentsKind::Files : ContentsKind::Tracks;
}

// True when each index table holds exactly the rows of its field (the engine compares them).
bool searchIndexInStep(const Db& db, ContentsKind kind)
{
    const ContentsDescriptor& descriptor = contentsDescriptor(kind);
    Transaction nothingWritten(db);
    for (const QString& field : descriptor.searchedFields) {
        const QString table = quoted(searchIndexTable(descriptor, field));
        try {
            db.exec(QStringLiteral("INSERT INTO ") + table + u'(' + table +
                    QStringLiteral(", rank) VALUES ('integrity-check', 1)"));
        } catch (const AppError&) {
            return false;
        }
    }
    return true;
}

} // namespace

QList<DatabaseCheck> checkDatabases(const AppContext& ctx)
{
    QList<DatabaseCheck> checks;
    for (const QString& path : {ctx.MainDBPath, ctx.FilesDBPath, ctx.TracksDBPath}) {
        DatabaseCheck check{path, {}};
        try {
            const bool contents = path != ctx.MainDBPath;
            const Db db(path, contents ? Db::Access::ReadWrite : Db::Access::ReadOnly);
            for (const QString& problem : db.texts(QStringLiteral("PRAGMA integrity_check"))) {
                if (problem != u"ok") {
                    check.problems.append(problem);
                }
            }
            if (contents && check.problems.isEmpty() && hasSearchIndex(db, kindOf(ctx, path)) &&
                !searchIndexInStep(db, kindOf(ctx, path))) {
                check.searchIndexOutOfStep = true;
                check.problems.append(QStringLiteral("the search index is out of step with the rows"));
            }
        } catch (const AppError& error) {
            check.problems.append(error.description());
        }
        checks.append(check);
    }
    return checks;
}

void rebuildSearchIndexOf(const AppContext& ctx, const QString& path)
{
    auto alone = DatabaseLock::tryAcquire(ctx.MainDBPath, DatabaseLock::Mode::Exclusive);
    if (!alone) {
        throw databasesBusyError();
    }
    const Db db(path);
    Transaction transaction(db);
    rebuildSearchIndex(db, kindOf(ctx, path));
    transaction.commit();
}

} // namespace vinora
