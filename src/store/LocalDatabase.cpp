#include "store/LocalDatabase.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"

namespace vinora {

std::unique_ptr<Db> openMainDatabaseForRefresh(AppContext& ctx)
{
    for (;;) {
        try {
            return std::make_unique<Db>(ctx.MainDBPath);
        } catch (const AppError& error) {
            if (error.number() != err::CannotOpenFile) {
                ReportFault(ctx, QStringLiteral("frmMain, LoadData()"), error);
            }
            const Answer answer = ctx.prompter().message(
                QStringLiteral("Папка '") + ctx.mainDatabaseFolder() +
                    QStringLiteral(
                        "' доступна только для чтения! Локальная работа с базой данных не возможна!\n\n"
                        "Восстановить путь к локальной базе данных?"),
                MessageStyle::YesNoExclamation);
            if (answer != Answer::Yes) {
                ctx.endProcess(0);
            }
            ctx.restoreDatabasePathToAppFolder();
        }
    }
}

} // namespace vinora
