#include "maintenance/MaintenanceTexts.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"

namespace vinora {

QString kilobytesText(qint64 bytes)
{
    return QString::number(bytes / 1024) + QStringLiteral(" Kб");
}

QString compactionMessage(qint64 before, qint64 after)
{
    const qint64 gain = (before - after) / 1024;
    return gain > 0 ? QStringLiteral("Операция успешно завершена! Файлы базы данных сжаты на ") +
                          QString::number(gain) + QStringLiteral(" Кб.")
                    : QStringLiteral("Операция успешно завершена! Файлы базы данных не были сжаты.");
}

QString fileTroubleText(const AppError& error)
{
    if (const std::optional<QString> refusal = fileRefusalText(error.number())) {
        return *refusal;
    }
    switch (error.number()) {
    case err::DiskFull:
        return QStringLiteral(
            "Недостаточно места на диске!\n\nДействие не выполнено. Данные, сохранённые ранее, не "
            "изменены.");
    case err::DatabasesBusy:
        return error.description() + QStringLiteral("\n\nПовторите действие, когда она закончит работу.");
    default:
        return {};
    }
}

bool underMaintenanceReport(const AppContext& ctx, const QString& place, const std::function<void()>& work)
{
    return underFaultHandler(ctx, place, [&] {
        try {
            work();
            return true;
        } catch (const AppError& error) {
            if (const QString text = fileTroubleText(error); !text.isEmpty()) {
                ctx.prompter().message(text, MessageStyle::Exclamation);
            } else {
                ReportErrorAndGoOn(ctx, place, error);
            }
            return false;
        }
    });
}

} // namespace vinora
