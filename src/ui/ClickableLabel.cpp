#include "ui/ClickableLabel.h"

#include <QMouseEvent>

namespace vinora {

ClickableLabel::ClickableLabel(QWidget* parent) : QLabel(parent)
{
    setCursor(Qt::PointingHandCursor);
}

void ClickableLabel::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && isEnabled()) {
        emit pressed(event->globalPosition().toPoint());
    }
    QLabel::mousePressEvent(event);
}

void ClickableLabel::enterEvent(QEnterEvent* event)
{
    emit hovered(true);
    QLabel::enterEvent(event);
}

void ClickableLabel::leaveEvent(QEvent* event)
{
    emit hovered(false);
    QLabel::leaveEvent(event);
}

} // namespace vinora
