#include "frame/AppError.h"

namespace vinora {

AppError::AppError(int number, QString description)
    : m_number(number), m_description(std::move(description)),
      m_what(QString(m_description + QStringLiteral(" (") + QString::number(m_number) + u')').toUtf8())
{
}

} // namespace vinora
