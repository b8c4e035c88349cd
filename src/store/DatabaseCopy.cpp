#include "store/DatabaseCopy.h"

#include "store/Db.h"
#include "store/SqlFunctions.h"

#include <sqlite3.h>

namespace vinora {

void copyDatabase(const QString& sourcePath, const QString& targetPath)
{
    const Db source(sourcePath, Db::Access::ReadOnly);
    const Db target(targetPath, Db::Access::Create);
    sqlite3* targetHandle = sqliteHandle(target.connection());
    sqlite3_backup* backup =
        sqlite3_backup_init(targetHandle, "main", sqliteHandle(source.connection()), "main");
    if (backup == nullptr) {
        throw sqlError(QString::fromUtf8(sqlite3_errmsg(targetHandle)),
                       QStringLiteral("backup to ") + targetPath);
    }
    // All pages in one step: the target's write lock is taken once and held to the end,
    // waiting for other connections as long as the busy timeout allows.
    int rc = SQLITE_OK;
    do {
        rc = sqlite3_backup_step(backup, -1);
        if (rc == SQLITE_BUSY || rc == SQLITE_LOCKED) {
            sqlite3_sleep(50);
        }
    } while (rc == SQLITE_OK || rc == SQLITE_BUSY || rc == SQLITE_LOCKED);
    sqlite3_backup_finish(backup);
    if (rc != SQLITE_DONE) {
        throw sqlError(QString::fromUtf8(sqlite3_errstr(rc)), QStringLiteral("backup to ") + targetPath);
    }
}

} // namespace vinora
