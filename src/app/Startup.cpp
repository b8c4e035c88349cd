#include "app/Startup.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "store/BackupSet.h"
#include "store/DatabaseHealth.h"
#include "store/Reanimator.h"
#include "store/SearchIndex.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QStandardPaths>
#include <QStringList>

namespace vinora {
namespace {

// Steps 6 to 8 of the start: the databases that are missing are made. The folder of the
// main database must be reachable (error 52 otherwise).
bool createMissingDatabases(AppContext& ctx)
{
    for (;;) {
        if (!QFileInfo(ctx.mainDatabaseFolder()).isDir()) {
            const Answer answer = ctx.prompter().message(
                QStringLiteral("Папка '") + ctx.mainDatabaseFolder() +
                    QStringLiteral("' не существует!\n\nВосстановить путь к локальной базе данных?"),
                MessageStyle::YesNoExclamation);
            if (answer != Answer::Yes) {
                return false;
            }
            ctx.restoreDatabasePathToAppFolder();
            continue;
        }
        if (!QFileInfo::exists(ctx.MainDBPath)) {
            Reanimator(ctx, 0);
        }
        if (!QFileInfo::exists(ctx.FilesDBPath)) {
            Reanimator(ctx, 1);
        }
        if (!QFileInfo::exists(ctx.TracksDBPath)) {
            Reanimator(ctx, 2);
        }
        return true;
    }
}

QString damagedDatabaseText(const DatabaseFault& fault)
{
    return QStringLiteral("База данных '") + fault.path +
           QStringLiteral("' повреждена или имеет не верный формат.\n\n(") + fault.reason +
           QStringLiteral(
               ")\n\nФайл оставлен как есть. Восстановите базы данных из резервной копии, выберите "
               "другую папку с базами данных или выйдите из программы.");
}

// A damaged database is never touched without the user's word: the backup set can be put
// in its place (the damaged file is kept beside), another folder chosen, or the program left.
bool offerWayOutOfDamagedDatabases(AppContext& ctx)
{
    while (const auto fault = firstDamagedDatabase(ctx)) {
        QStringList ways;
        const bool canRestore = backupSetComplete(ctx);
        if (canRestore) {
            ways.append(QStringLiteral("Восстановить из резервной копии"));
        }
        ways.append({QStringLiteral("Выбрать другую папку..."), QStringLiteral("Выйти")});
        const int chosen = ctx.prompter().choose(damagedDatabaseText(*fault), MessageStyle::Stop, ways);
        const QString way = ways.value(chosen, QStringLiteral("Выйти"));
        if (way == ways.last()) {
            return false;
        }
        if (canRestore && chosen == 0) {
            try {
                restoreBackupSet(ctx);
            } catch (const AppError& error) {
                ctx.prompter().message(QStringLiteral("ОШИБКА.\n\n") + error.description(),
                                       MessageStyle::Stop);
            }
            continue;
        }
        const QString folder =
            ctx.prompter().chooseFolder(QStringLiteral("Папка с базами данных"), ctx.mainDatabaseFolder());
        if (folder.isEmpty()) {
            continue;
        }
        ctx.ini().write(QStringLiteral("Option"), QStringLiteral("PathLocalDB"), folder);
        ctx.setDatabaseFolder(folder);
        if (!createMissingDatabases(ctx)) {
            return false;
        }
    }
    return true;
}

// The instance lock could not be taken: another instance holds it, or the folder refuses
// the lock file (a read-only application folder), which is a different story to tell.
QString lockRefusalText(const AppContext& ctx, const QLockFile& lock)
{
    if (lock.error() == QLockFile::LockFailedError) {
        return QStringLiteral("Программа уже запущена!");
    }
    return QStringLiteral("Папка программы '") + ctx.appFolder() +
           QStringLiteral(
               "' недоступна для записи: программа не может в ней работать.\n\n"
               "Разрешите запись в эту папку или укажите другую в переменной окружения VINORA_HOME.");
}

} // namespace

QString applicationFolder()
{
    QString folder = qEnvironmentVariable("VINORA_HOME");
    if (folder.isEmpty()) {
        folder = QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
                     .filePath(QStringLiteral("vinora"));
    }
    QDir().mkpath(folder);
    return QDir(folder).absolutePath();
}

bool Main(AppContext& ctx, QLockFile& instanceLock, const std::function<void()>& showSplash)
{
    instanceLock.setStaleLockTime(0);
    if (!instanceLock.tryLock(0)) {
        ctx.prompter().message(lockRefusalText(ctx, instanceLock), MessageStyle::Exclamation);
        return false;
    }
    return underFaultHandler(ctx, QStringLiteral("vinoraModule, Main()"), [&] {
        ctx.resolveDatabasePaths();
        if (showSplash) {
            showSplash();
        }
        if (!createMissingDatabases(ctx) || !offerWayOutOfDamagedDatabases(ctx)) {
            return false;
        }
        // Databases of earlier versions get their search index once; without it a search
        // still works, reading every row.
        underErrorReport(ctx, QStringLiteral("vinoraModule, Main()"), [&] {
            addMissingSearchIndex(ctx.FilesDBPath, ContentsKind::Files);
            addMissingSearchIndex(ctx.TracksDBPath, ContentsKind::Tracks);
        });
        return true;
    });
}

} // namespace vinora
