#pragma once

#include "frame/Prompter.h"

namespace vinora {

// Prompts of the command line: messages go to standard error, questions are declined,
// nothing is chosen.
class CliPrompter final : public UnattendedPrompter
{
public:
    Answer message(const QString& text, MessageStyle style) override;
};

} // namespace vinora
