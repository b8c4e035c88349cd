#include "ui/KeyFilter.h"

#include <QKeyEvent>

namespace vinora {

KeyFilter::KeyFilter(Rule rule, QObject* parent) : QObject(parent), m_rule(rule) {}

void KeyFilter::install(QObject* field, Rule rule)
{
    field->installEventFilter(new KeyFilter(rule, field));
}

bool KeyFilter::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress) {
        return QObject::eventFilter(watched, event);
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    const QString text = key->text();
    if (key->key() == Qt::Key_Backspace || text.isEmpty() || !text.at(0).isPrint()) {
        return false; // Backspace, arrows, Delete, shortcuts
    }
    const int code = text.at(0).unicode();
    return m_rule(code) == 0;
}

} // namespace vinora
