#include "maintenance/Backup.h"

#include "frame/AppContext.h"
#include "store/BackupSet.h"
#include "store/Db.h"
#include "store/InfoStamp.h"

namespace vinora {
namespace {
const QString kBackupField = QStringLiteral("РезервнаяКопия");
} // namespace

QDate lastBackupDate(const AppContext& ctx)
{
    const Db db(ctx.MainDBPath, Db::Access::ReadOnly);
    return readStamp(db, kBackupField);
}

void createBackup(const AppContext& ctx)
{
    createBackupSet(ctx);
    StampBackup(Db(ctx.MainDBPath), ctx.clock().today());
}

void recoverBackup(const AppContext& ctx)
{
    QDate carried;
    try {
        carried = lastBackupDate(ctx);
    } catch (const AppError&) {
        // A database that cannot be read has no date to give; the restore is what it needs.
    }
    restoreBackupSet(ctx);
    StampBackup(Db(ctx.MainDBPath), carried);
}

void deleteBackup(const AppContext& ctx)
{
    deleteBackupSet(ctx);
    StampBackup(Db(ctx.MainDBPath), QDate());
}

} // namespace vinora
