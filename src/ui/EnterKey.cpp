#include "ui/EnterKey.h"

#include <QEvent>
#include <QKeyEvent>
#include <QWidget>

namespace vinora {
namespace {

class EnterFilter : public QObject
{
public:
    EnterFilter(std::function<void()> action, QObject* parent) : QObject(parent), m_action(std::move(action))
    {
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::KeyPress && isEnterKey(static_cast<QKeyEvent*>(event)->key())) {
            m_action();
            return true;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> m_action;
};

} // namespace

bool isEnterKey(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

void onEnter(QWidget* field, std::function<void()> action)
{
    field->installEventFilter(new EnterFilter(std::move(action), field));
}

} // namespace vinora
