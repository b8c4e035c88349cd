#pragma once

#include <QLineEdit>

namespace vinora {

// A borrower's phone: "нет" stands for none, is emptied when the box takes the focus and
// comes back when it is left empty.
class PhoneBox : public QLineEdit
{
    Q_OBJECT
public:
    explicit PhoneBox(QWidget* parent = nullptr);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};

} // namespace vinora
