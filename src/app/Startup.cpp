#include "app/Startup.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "store/Reanimator.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QStandardPaths>

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
        ctx.prompter().message(QStringLiteral("Программа уже запущена!"), MessageStyle::Exclamation);
        return false;
    }
    return underFaultHandler(ctx, QStringLiteral("vinoraModule, Main()"), [&] {
        ctx.resolveDatabasePaths();
        if (showSplash) {
            showSplash();
        }
        return createMissingDatabases(ctx);
    });
}

} // namespace vinora
