#include "lending/LoanFlows.h"

#include "frame/AppContext.h"
#include "frame/Clock.h"
#include "frame/FaultLog.h"
#include "lending/LoanLedger.h"
#include "lending/frmAddInDue.h"
#include "store/Db.h"

namespace vinora {

bool lendOrTakeBack(AppContext& ctx, Category category, qint64 key, const QString& place, QWidget* parent)
{
    const std::optional<LoanDisc> disc = underFaultHandler(ctx, place, [&] {
        const Db db(ctx.MainDBPath, Db::Access::ReadOnly);
        return loanDiscByKey(db, category, key);
    });
    if (!disc) {
        return false;
    }
    const QString number = QString::number(disc->number);
    if (!disc->lent) {
        if (ctx.prompter().message(QStringLiteral("Добавить должника на диск № ") + number + u'?',
                                   MessageStyle::YesNoQuestion) != Answer::Yes) {
            return false;
        }
        frmAddInDue dialog(ctx, *disc, parent);
        ctx.prompter().showModal(dialog);
        const bool lent = ctx.DialogDone;
        ctx.DialogDone = false;
        return lent;
    }
    if (ctx.prompter().message(QStringLiteral("Удалить должника с диска № ") + number + u'?',
                               MessageStyle::YesNoQuestion) != Answer::Yes) {
        return false;
    }
    underFaultHandler(ctx, place, [&] {
        const Db db(ctx.MainDBPath);
        returnDisc(db, category, key, ctx.clock().today());
    });
    return true;
}

} // namespace vinora
