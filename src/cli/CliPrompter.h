#pragma once

#include "frame/Prompter.h"

namespace vinora {

// Prompts of the command line: messages go to standard error, questions are declined,
// nothing is chosen.
class CliPrompter final : public Prompter
{
public:
    Answer message(const QString& text, MessageStyle style) override;
    std::optional<QString> input(const QString&, const QString&, const QString&) override
    {
        return std::nullopt;
    }
    QString openFile(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFile(const QString&, const QString&, const QString&) override { return {}; }
    QString chooseFolder(const QString&, const QString&) override { return {}; }
    int showModal(QDialog&) override { return 0; }
    bool openUrl(const QUrl&) override { return false; }
};

} // namespace vinora
