#include "ui/WaitCursor.h"

#include <QApplication>

namespace vinora {

WaitCursor::WaitCursor()
{
    QApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
}

WaitCursor::~WaitCursor()
{
    QApplication::restoreOverrideCursor();
}

NormalCursor::NormalCursor()
{
    while (const QCursor* cursor = QApplication::overrideCursor()) {
        m_paused.append(*cursor);
        QApplication::restoreOverrideCursor();
    }
}

NormalCursor::~NormalCursor()
{
    for (auto cursor = m_paused.crbegin(); cursor != m_paused.crend(); ++cursor) {
        QApplication::setOverrideCursor(*cursor);
    }
}

} // namespace vinora
