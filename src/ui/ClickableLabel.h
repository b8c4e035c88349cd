#pragma once

#include <QLabel>

namespace vinora {

// A label that answers the mouse: a press, and the pointer coming and going (for the
// highlight of the dashboard's logos and links).
class ClickableLabel : public QLabel
{
    Q_OBJECT
public:
    explicit ClickableLabel(QWidget* parent = nullptr);

signals:
    void pressed(const QPoint& globalPosition);
    void hovered(bool inside);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
};

} // namespace vinora
