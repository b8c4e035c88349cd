#pragma once

#include <QLineEdit>

namespace vinora {

class AppContext;

// A borrower's phone: "нет" stands for none, is emptied when the box takes the focus and
// comes back when it is left empty.
class PhoneBox : public QLineEdit
{
    Q_OBJECT
public:
    explicit PhoneBox(QWidget* parent = nullptr);

    // Stores the phone typed as the phone of borrower `borrower` named `name` and says so;
    // faults are reported under `place`.
    void save(AppContext& ctx, qint64 borrower, const QString& name, const QString& place);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};

} // namespace vinora
