#include "store/BackupSet.h"

#include "frame/AppContext.h"
#include "store/DatabaseCopy.h"
#include "store/DatabaseLock.h"
#include "store/Db.h"
#include "store/FileReplace.h"

#include <QFile>
#include <QFileInfo>

namespace vinora {
namespace {

bool opensAsDatabase(const QString& path)
{
    try {
        const Db db(path, Db::Access::ReadOnly);
        return true;
    } catch (const AppError&) {
        return false;
    }
}

} // namespace

std::array<QString, 3> backupSetPaths(const AppContext& ctx)
{
    return {ctx.appFile(QStringLiteral("backup_of_vinora.db")),
            ctx.appFile(QStringLiteral("backup_of_vinora_files.db")),
            ctx.appFile(QStringLiteral("backup_of_vinora_tracks.db"))};
}

bool backupSetComplete(const AppContext& ctx)
{
    for (const QString& path : backupSetPaths(ctx)) {
        if (!QFileInfo(path).isFile()) {
            return false;
        }
    }
    return true;
}

void restoreBackupSet(const AppContext& ctx)
{
    if (!backupSetComplete(ctx)) {
        throw AppError(err::FileNotFound, QStringLiteral("Файл резервной копии данных не найден!"));
    }
    const auto alone = DatabaseLock::tryAcquire(ctx.MainDBPath, DatabaseLock::Mode::Exclusive);
    if (!alone) {
        throw AppError(err::CannotOpenFile,
                       QStringLiteral("С базами данных сейчас работает другая программа (vinora-cli)."));
    }
    const std::array<QString, 3> backups = backupSetPaths(ctx);
    const std::array<QString, 3> databases = {ctx.MainDBPath, ctx.FilesDBPath, ctx.TracksDBPath};
    for (std::size_t i = 0; i < databases.size(); ++i) {
        if (QFileInfo::exists(databases[i]) && !opensAsDatabase(databases[i])) {
            replaceFile(databases[i], databases[i] + QStringLiteral(".damaged"));
        }
        copyDatabase(backups[i], databases[i]);
    }
}

} // namespace vinora
