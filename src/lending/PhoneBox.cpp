#include "lending/PhoneBox.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "lending/BorrowerNames.h"
#include "lending/DueList.h"
#include "store/Db.h"

namespace vinora {

PhoneBox::PhoneBox(QWidget* parent) : QLineEdit(parent)
{
    setObjectName(QStringLiteral("txtTelephone"));
    setMaxLength(kBorrowerPhoneLength);
}

void PhoneBox::save(AppContext& ctx, qint64 borrower, const QString& name, const QString& place)
{
    const QString typed = text() == u"нет" ? QString() : text();
    underFaultHandler(ctx, place, [&] {
        const Db db(ctx.MainDBPath);
        setText(setBorrowerPhone(db, borrower, typed));
    });
    ctx.prompter().message(QStringLiteral("Телефон должника '") + name + QStringLiteral("' был успешно изменен."),
                           MessageStyle::Information);
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
