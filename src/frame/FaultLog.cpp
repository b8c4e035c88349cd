#include "frame/FaultLog.h"

#include "frame/AppContext.h"
#include "frame/Cp1251.h"
#include "frame/ProgramInfo.h"
#include "frame/Version.h"

#include <QFile>

namespace vinora {

QString faultLogLine(const QDateTime& when, const AppError& error, const QString& place)
{
    return when.toString(QStringLiteral("dd.MM.yyyy")) + u' ' + when.toString(QStringLiteral("hh:mm:ss")) +
           u' ' + faultLogVersion() + u' ' + error.description() + QStringLiteral(" (Код: ") +
           QString::number(error.number()) + QStringLiteral(") ") + place;
}

QString faultMessage(const AppError& error)
{
    return QStringLiteral("ОШИБКА.\n\n") + error.description() + QStringLiteral(" (Код: ") +
           QString::number(error.number()) + QStringLiteral(")\n\nОтправьте на адрес ") +
           QString::fromLatin1(kSupportAddress) +
           QStringLiteral(" файл bugreport.log (расположен в каталоге установленной программы). Файл "
                          "содержит информацию, которая поможет исправить эту ошибку. В сообщении укажите "
                          "последовательность Ваших действий до возникновения ошибки.");
}

namespace {

void appendToFaultLog(const AppContext& ctx, const QString& place, const AppError& error)
{
    QFile log(ctx.appFile(QStringLiteral("bugreport.log")));
    if (log.open(QIODevice::Append)) {
        log.write(cp1251::encode(QString(faultLogLine(ctx.clock().now(), error, place) + u'\n')));
        log.close();
    }
}

} // namespace

void ReportErrorAndGoOn(const AppContext& ctx, const QString& place, const AppError& error)
{
    appendToFaultLog(ctx, place, error);
    ctx.prompter().message(QStringLiteral("ОШИБКА.\n\n") + error.description() + QStringLiteral(" (Код: ") +
                               QString::number(error.number()) +
                               QStringLiteral(")\n\nДействие не выполнено. Данные, сохранённые ранее, не изменены."),
                           MessageStyle::Stop);
}

std::optional<QString> fileRefusalText(int number)
{
    switch (number) {
    case err::BadFileNameOrNumber:
        return QStringLiteral("Устройство не готово!");
    case err::FileNotFound:
        return QStringLiteral("Отказано в доступе!");
    case err::PathFileAccess:
        return QStringLiteral("Папка доступна только для чтения!");
    default:
        return std::nullopt;
    }
}

void ReportFault(const AppContext& ctx, const QString& place, const AppError& error)
{
    appendToFaultLog(ctx, place, error);
    ctx.prompter().message(faultMessage(error), MessageStyle::Stop);
    ctx.endProcess(1);
}

void ReportFault(const AppContext& ctx, const QString& place, const std::exception& error)
{
    if (const auto* appError = dynamic_cast<const AppError*>(&error)) {
        ReportFault(ctx, place, *appError);
    }
    ReportFault(ctx, place, AppError(err::EngineError, QString::fromLocal8Bit(error.what())));
}

} // namespace vinora
