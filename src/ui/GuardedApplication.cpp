#include "ui/GuardedApplication.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"

#include <QWidget>
#include <cstdio>

namespace vinora {

QString eventPlace(const QObject* receiver)
{
    QString name;
    if (const auto* widget = qobject_cast<const QWidget*>(receiver)) {
        name = widget->window()->objectName();
    }
    if (name.isEmpty() && receiver != nullptr) {
        name = receiver->objectName().isEmpty() ? QString::fromLatin1(receiver->metaObject()->className())
                                                : receiver->objectName();
    }
    return name + QStringLiteral(", event()");
}

bool GuardedApplication::notify(QObject* receiver, QEvent* event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const AppError& error) {
        if (m_ctx == nullptr) {
            std::fprintf(stderr, "vinora: %s\n", error.what());
            return false;
        }
        ReportErrorAndGoOn(*m_ctx, eventPlace(receiver), error);
    } catch (const std::bad_alloc&) {
        if (m_ctx != nullptr) {
            ReportFault(*m_ctx, eventPlace(receiver),
                        AppError(err::OutOfMemory, QStringLiteral("Out of memory")));
        }
        throw;
    } catch (const std::exception& error) {
        if (m_ctx != nullptr) {
            ReportFault(*m_ctx, eventPlace(receiver), error);
        }
        throw;
    }
    return false;
}

} // namespace vinora
