#pragma once

#include "frame/AppError.h"

#include <QString>
#include <functional>

namespace vinora {

class AppContext;

// A size as the wizard shows it: whole kilobytes and " Kб".
QString kilobytesText(qint64 bytes);

// The closing message of a compaction that took the databases from `before` to `after` bytes.
QString compactionMessage(qint64 before, qint64 after);

// The message for an error of the file system or of another process at work: 52 "Устройство
// не готово!", 53 "Отказано в доступе!", 75 "Папка доступна только для чтения!", a full disk,
// busy databases. Empty for any other error.
QString fileTroubleText(const AppError& error);

// Runs `work` of a maintenance routine: the errors above are told with their message and
// the routine ends; another AppError is logged and told (ReportErrorAndGoOn); anything else
// goes to the fault log under `place`. False when the work did not finish.
bool underMaintenanceReport(const AppContext& ctx, const QString& place, const std::function<void()>& work);

} // namespace vinora
