#include "cli/CliPrompter.h"

#include <cstdio>

namespace vinora {

Answer CliPrompter::message(const QString& text, MessageStyle style)
{
    std::fprintf(stderr, "vinora-cli: %s\n", text.toLocal8Bit().constData());
    if (!asksQuestion(style)) {
        return Answer::Ok;
    }
    return style == MessageStyle::OkCancelQuestion || style == MessageStyle::OkCancelStop ||
                   style == MessageStyle::OkCancelInformation
               ? Answer::Cancel
               : Answer::No;
}

} // namespace vinora
