#include "ui/WaitCursor.h"

#include <QApplication>
#include <QCursor>

namespace vinora {

WaitCursor::WaitCursor()
{
    QApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
}

WaitCursor::~WaitCursor()
{
    QApplication::restoreOverrideCursor();
}

} // namespace vinora
