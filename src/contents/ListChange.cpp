#include "contents/ListChange.h"

#include "frame/Prompter.h"

namespace vinora {

void changeListAsk(Prompter& prompter, ListChange change, const QString& question, const DiscListSteps& steps)
{
    const MessageStyle style =
        change == ListChange::Delete ? MessageStyle::YesNoQuestion : MessageStyle::YesNoExclamation;
    if (prompter.message(question, style) != Answer::Yes) {
        return;
    }
    steps.remove();
    steps.refresh();
    if (change == ListChange::Recreate) {
        steps.create();
    }
}

} // namespace vinora
