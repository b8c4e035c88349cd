#include "store/LocalDatabase.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <unistd.h>

namespace vinora {
namespace {

bool folderWritable(const QString& folder)
{
    return ::access(QFile::encodeName(folder).constData(), W_OK) == 0;
}

bool sameFolder(const QString& a, const QString& b)
{
    return QDir(a).canonicalPath() == QDir(b).canonicalPath();
}

} // namespace

std::unique_ptr<Db> openMainDatabaseForRefresh(AppContext& ctx)
{
    for (;;) {
        try {
            return std::make_unique<Db>(ctx.MainDBPath);
        } catch (const AppError& error) {
            if (error.number() != err::CannotOpenFile) {
                ReportFault(ctx, QStringLiteral("frmMain, LoadData()"), error);
            }
            const QString folder = ctx.mainDatabaseFolder();
            // Going back to the application folder only helps when the databases stand
            // elsewhere; asked there, the same answer would bring the same question back.
            const bool canGoBack = !sameFolder(folder, ctx.appFolder());
            QString text =
                folderWritable(folder)
                    ? QStringLiteral("Файл '") + ctx.MainDBPath +
                          QStringLiteral("' доступен только для чтения! Локальная работа с базой данных "
                                         "не возможна!")
                    : QStringLiteral("Папка '") + folder +
                          QStringLiteral("' доступна только для чтения! Локальная работа с базой "
                                         "данных не возможна!");
            if (!canGoBack) {
                ctx.prompter().message(
                    text + QStringLiteral("\n\nРазрешите запись и запустите программу снова."),
                    MessageStyle::Exclamation);
                ctx.endProcess(0);
            }
            const Answer answer = ctx.prompter().message(
                text + QStringLiteral("\n\nВосстановить путь к локальной базе данных?"),
                MessageStyle::YesNoExclamation);
            if (answer != Answer::Yes) {
                ctx.endProcess(0);
            }
            ctx.restoreDatabasePathToAppFolder();
        }
    }
}

} // namespace vinora
