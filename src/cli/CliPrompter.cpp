#include "cli/CliPrompter.h"

#include <cstdio>

namespace vinora {

Answer CliPrompter::message(const QString& text, MessageStyle style)
{
    std::fprintf(stderr, "vinora-cli: %s\n", text.toLocal8Bit().constData());
    return UnattendedPrompter::message(text, style);
}

} // namespace vinora
