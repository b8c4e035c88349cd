#include "store/Reanimator.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "store/ContentsLists.h"
#include "store/DatabaseCopy.h"
#include "store/Db.h"
#include "store/FileReplace.h"
#include "store/Schema.h"

#include <QFile>
#include <QFileInfo>
#include <functional>

namespace vinora {
namespace {

bool isDatabase(const QString& path)
{
    try {
        Db db(path, Db::Access::ReadOnly);
        return true;
    } catch (const AppError& error) {
        return error.number() != err::UnrecognizedFormat;
    }
}

// Builds a database in a file beside `path` and puts it in place when complete: moved there
// when nothing stands there yet, else copied into the existing file by the engine's backup,
// since another process may have that file open.
void buildAt(const QString& path, const std::function<void(const Db&)>& build)
{
    const QString partial = partialPathFor(path);
    QFile::remove(partial);
    try {
        {
            Db db(partial, Db::Access::Create);
            Transaction transaction(db);
            build(db);
            transaction.commit();
        }
        if (QFileInfo::exists(path) && isDatabase(path)) {
            copyDatabase(partial, path);
            QFile::remove(partial);
        } else {
            replaceFile(partial, path); // nobody can work on a file that is no database
        }
    } catch (...) {
        QFile::remove(partial);
        throw;
    }
}

QString readOnlyFolderText(const AppContext& ctx)
{
    return QStringLiteral("Папка '") + ctx.mainDatabaseFolder() +
           QStringLiteral("' доступна только для чтения!");
}

} // namespace

void createMainDatabase(const QString& path)
{
    if (QFileInfo::exists(path)) {
        throw AppError(err::DatabaseExists, QStringLiteral("Database already exists."));
    }
    buildAt(path, [](const Db& db) {
        for (const TableDef& table : mainTables()) {
            createTable(db, table);
        }
    });
}

void createFilesDatabase(const QString& path)
{
    buildAt(path, [](const Db& db) {
        for (const TableDef& table : filterTables()) {
            createTable(db, table);
        }
        ContentsLists::createStorage(db, ContentsKind::Files);
    });
}

void createTracksDatabase(const QString& path)
{
    buildAt(path, [](const Db& db) { ContentsLists::createStorage(db, ContentsKind::Tracks); });
}

bool Reanimator(AppContext& ctx, int kind)
{
    if (kind != 1 && kind != 2) {
        kind = 0;
    }
    try {
        if (kind == 0) {
            createMainDatabase(ctx.MainDBPath);
        }
        if (kind == 0 || kind == 1) {
            createFilesDatabase(ctx.FilesDBPath);
        }
        if (kind == 0 || kind == 2) {
            createTracksDatabase(ctx.TracksDBPath);
        }
        return false;
    } catch (const AppError& error) {
        if (error.number() == err::CannotOpenFile) {
            ctx.prompter().message(readOnlyFolderText(ctx), MessageStyle::Exclamation);
            return true;
        }
        if (error.number() != err::InvalidPath) {
            ReportFault(ctx, QStringLiteral("vinoraModule, Reanimator()"), error);
        }
        const Answer answer = ctx.prompter().message(
            QStringLiteral("Папка '") + ctx.mainDatabaseFolder() +
                QStringLiteral("' не существует!\n\nВосстановить путь к локальной базе данных?"),
            MessageStyle::YesNoExclamation);
        if (answer != Answer::Yes) {
            ctx.endProcess(0);
        }
        ctx.restoreDatabasePathToAppFolder();
        const QString paths[] = {ctx.MainDBPath, ctx.FilesDBPath, ctx.TracksDBPath};
        for (int missing = 0; missing < 3; ++missing) {
            if (!QFileInfo::exists(paths[missing])) {
                Reanimator(ctx, missing);
            }
        }
        return false;
    }
}

} // namespace vinora
