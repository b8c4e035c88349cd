#pragma once

#include "frame/AppError.h"

#include <QDateTime>
#include <QString>
#include <optional>

namespace vinora {

class AppContext;

// One line of bugreport.log: date, time, version, description, code and place.
QString faultLogLine(const QDateTime& when, const AppError& error, const QString& place);

// The text of the fault dialog.
QString faultMessage(const AppError& error);

// The last resort of every routine: appends the line to bugreport.log in the application
// folder, tells the user, and ends the process. `place` names the routine, as in
// "frmMain, LoadData()".
[[noreturn]] void ReportFault(const AppContext& ctx, const QString& place, const AppError& error);
[[noreturn]] void ReportFault(const AppContext& ctx, const QString& place, const std::exception& error);

// For errors that bad input causes (a damaged database, a file that cannot be written):
// appends the line to bugreport.log, tells the user what failed and that nothing stored
// was lost, and returns, so the program goes on.
void ReportErrorAndGoOn(const AppContext& ctx, const QString& place, const AppError& error);

// What the user is told when the device or the file system refuses a file: 52 "Устройство не
// готово!", 53 "Отказано в доступе!", 75 "Папка доступна только для чтения!"; nothing for
// other errors.
std::optional<QString> fileRefusalText(int number);

// Runs `work`; an AppError or other exception escaping it goes to ReportFault with `place`.
template <typename Work>
auto underFaultHandler(const AppContext& ctx, const QString& place, Work&& work) -> decltype(work())
{
    try {
        return work();
    } catch (const AppError& error) {
        ReportFault(ctx, place, error);
    } catch (const std::bad_alloc&) {
        ReportFault(ctx, place, AppError(err::OutOfMemory, QStringLiteral("Out of memory")));
    } catch (const std::exception& error) {
        ReportFault(ctx, place, error);
    }
}

// Runs `work` for a window that outlives a refused file or database: an AppError is
// reported with ReportErrorAndGoOn and gives false; anything else goes to ReportFault.
template <typename Work> bool underErrorReport(const AppContext& ctx, const QString& place, Work&& work)
{
    return underFaultHandler(ctx, place, [&] {
        try {
            work();
            return true;
        } catch (const AppError& error) {
            ReportErrorAndGoOn(ctx, place, error);
            return false;
        }
    });
}

} // namespace vinora
