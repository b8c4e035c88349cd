#include "store/BackupSet.h"

#include "frame/AppContext.h"
#include "store/DatabaseCopy.h"
#include "store/DatabaseLock.h"
#include "store/Db.h"
#include "store/FileErrors.h"
#include "store/FileReplace.h"

#include <QDir>
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

std::array<QString, 3> databasePaths(const AppContext& ctx)
{
    return {ctx.MainDBPath, ctx.FilesDBPath, ctx.TracksDBPath};
}

DatabaseLock lockAlone(const AppContext& ctx)
{
    auto alone = DatabaseLock::tryAcquire(ctx.MainDBPath, DatabaseLock::Mode::Exclusive);
    if (!alone) {
        throw databasesBusyError();
    }
    return std::move(*alone);
}

// The file a database is copied to before a restore, to be put back should the restore fail.
QString beforeRestorePath(const QString& database)
{
    const QFileInfo info(database);
    return info.dir().filePath(u'.' + info.fileName() + QStringLiteral(".before-restore"));
}

// What stood at a database's place before the restore, and how to put it back.
struct Previous
{
    enum Kind { Nothing, Database, Damaged } kind = Nothing;
    QString database;
    QString kept;         // the copy aside, or the damaged file moved aside
    bool changed = false; // the place holds something else now

    void putBack() const
    {
        switch (kind) {
        case Database:
            copyDatabase(kept, database);
            break;
        case Damaged:
            replaceFile(kept, database);
            break;
        case Nothing:
            removeFile(database);
            break;
        }
    }
};

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

qint64 backupSetSize(const AppContext& ctx)
{
    qint64 total = 0;
    for (const QString& path : backupSetPaths(ctx)) {
        total += QFileInfo(path).size();
    }
    return total;
}

void createBackupSet(const AppContext& ctx)
{
    checkWritableFolder(ctx.appFolder());
    const DatabaseLock alone = lockAlone(ctx);
    const std::array<QString, 3> backups = backupSetPaths(ctx);
    const std::array<QString, 3> databases = databasePaths(ctx);
    std::array<QString, 3> made;
    try {
        for (std::size_t i = 0; i < databases.size(); ++i) {
            made[i] = partialPathFor(backups[i]);
            removeFile(made[i]);
            copyDatabase(databases[i], made[i]);
        }
        replaceTogether({{made[0], backups[0]}, {made[1], backups[1]}, {made[2], backups[2]}});
        made = {};
    } catch (...) {
        for (const QString& partial : made) {
            if (!partial.isEmpty()) {
                QFile::remove(partial);
            }
        }
        throw;
    }
}

void restoreBackupSet(const AppContext& ctx)
{
    if (!backupSetComplete(ctx)) {
        throw AppError(err::FileNotFound, QStringLiteral("Файл резервной копии данных не найден!"));
    }
    const std::array<QString, 3> backups = backupSetPaths(ctx);
    for (const QString& backup : backups) {
        if (!opensAsDatabase(backup)) {
            throw AppError(err::UnrecognizedFormat,
                           QStringLiteral("Файл резервной копии '") + backup +
                               QStringLiteral("' поврежден или имеет не верный формат."));
        }
    }
    const DatabaseLock alone = lockAlone(ctx);
    const std::array<QString, 3> databases = databasePaths(ctx);
    std::array<Previous, 3> previous;
    try {
        // What stands there now, copied aside first: a full disk stops the restore here,
        // before any database has changed.
        for (std::size_t i = 0; i < databases.size(); ++i) {
            previous[i].database = databases[i];
            if (!QFileInfo::exists(databases[i])) {
                continue;
            }
            if (opensAsDatabase(databases[i])) {
                previous[i].kind = Previous::Database;
                previous[i].kept = beforeRestorePath(databases[i]);
                removeFile(previous[i].kept);
                copyDatabase(databases[i], previous[i].kept);
            } else {
                previous[i].kind = Previous::Damaged;
                previous[i].kept = databases[i] + QStringLiteral(".damaged");
            }
        }
        for (std::size_t i = 0; i < databases.size(); ++i) {
            if (previous[i].kind == Previous::Damaged) {
                replaceFile(databases[i], previous[i].kept);
            }
            // A new file may stand there even when the copy fails; a database copied into
            // is unchanged by a failed copy.
            previous[i].changed = previous[i].kind != Previous::Database;
            copyDatabase(backups[i], databases[i]);
            previous[i].changed = true;
        }
    } catch (const AppError& error) {
        // The databases restored so far go back to what they were.
        QStringList left;
        for (const Previous& before : previous) {
            if (!before.changed) {
                continue;
            }
            try {
                before.putBack();
            } catch (const AppError&) {
                left.append(before.kept.isEmpty() ? before.database : before.kept);
            }
        }
        if (!left.isEmpty()) {
            throw AppError(err::EngineError,
                           error.description() +
                               QStringLiteral("\n\nНе все базы данных удалось вернуть в прежнее "
                                              "состояние; их прежние копии сохранены: ") +
                               left.join(QStringLiteral(", ")));
        }
        for (const Previous& before : previous) {
            if (before.kind == Previous::Database) {
                QFile::remove(before.kept);
            }
        }
        throw;
    }
    for (const Previous& before : previous) {
        if (before.kind == Previous::Database) {
            QFile::remove(before.kept);
        }
    }
}

void deleteBackupSet(const AppContext& ctx)
{
    for (const QString& backup : backupSetPaths(ctx)) {
        removeFile(backup);
    }
}

} // namespace vinora
