#include "lending/PhoneBox.h"

#include "lending/BorrowerNames.h"

namespace vinora {

PhoneBox::PhoneBox(QWidget* parent) : QLineEdit(parent)
{
    setObjectName(QStringLiteral("txtTelephone"));
    setMaxLength(kBorrowerPhoneLength);
}

void PhoneBox::focusInEvent(QFocusEvent* event)
{
    if (text() == u"нет") {
        clear();
    }
    QLineEdit::focusInEvent(event);
}

void PhoneBox::focusOutEvent(QFocusEvent* event)
{
    if (text().isEmpty()) {
        setText(QStringLiteral("нет"));
    }
    QLineEdit::focusOutEvent(event);
}

} // namespace vinora
