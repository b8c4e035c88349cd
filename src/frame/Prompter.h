#pragma once

#include <QString>
#include <QStringList>
#include <optional>

class QDialog;
class QUrl;

namespace vinora {

// Message box kinds by the values the program has always used for them.
enum class MessageStyle {
    Plain = 0,                // OK, no icon
    YesNo = 4,                // Yes, No, no icon
    OkCancelQuestion = 33,    // OK, Cancel, question
    OkCancelInformation = 65, // OK, Cancel, information
    YesNoCancelQuestion = 35, // Yes, No, Cancel, question
    Stop = 16,                // OK, stop
    Question = 32,            // OK, question
    YesNoQuestion = 36,       // Yes, No, question
    Exclamation = 48,         // OK, exclamation
    OkCancelStop = 49,        // OK, Cancel, stop
    YesNoExclamation = 52,    // Yes, No, exclamation
    Information = 64,         // OK, information
};

enum class Answer { Ok, Cancel, Yes, No };

// True for the styles that offer a choice, so an answer must be given.
constexpr bool asksQuestion(MessageStyle style)
{
    switch (style) {
    case MessageStyle::YesNo:
    case MessageStyle::OkCancelQuestion:
    case MessageStyle::OkCancelInformation:
    case MessageStyle::YesNoCancelQuestion:
    case MessageStyle::YesNoQuestion:
    case MessageStyle::OkCancelStop:
    case MessageStyle::YesNoExclamation:
        return true;
    default:
        return false;
    }
}

// Every message, question, input box, file or folder chooser and modal child window goes
// through this interface. The program shows Qt dialogs; tests answer from a script and
// keep what was shown.
class Prompter
{
public:
    virtual ~Prompter() = default;

    virtual Answer message(const QString& text, MessageStyle style) = 0;
    // A message with buttons of its own, first button the default: the index of the button
    // pressed, or -1 when the box was closed without one.
    virtual int choose(const QString& text, MessageStyle icon, const QStringList& buttons) = 0;
    // The text typed, or nothing when the box was cancelled.
    virtual std::optional<QString> input(const QString& prompt, const QString& title,
                                         const QString& initial) = 0;
    // A chosen path, or the empty text when the chooser was cancelled. The filter is in
    // the form "Description (*.db)|*.db|All (*.*)|*.*".
    virtual QString openFile(const QString& title, const QString& filter, const QString& startPath) = 0;
    virtual QString saveFile(const QString& title, const QString& filter, const QString& startPath) = 0;
    virtual QString chooseFolder(const QString& title, const QString& startFolder) = 0;
    // Shows a window modally and returns its result code.
    virtual int showModal(QDialog& dialog) = 0;
    // Hands a file, folder, web or mail address to the desktop; false when nothing opened it.
    virtual bool openUrl(const QUrl& url) = 0;
};

// The prompts of a run without anyone to answer (the command line, benchmarks): messages
// are passed by, questions declined, nothing is typed, chosen or opened.
class UnattendedPrompter : public Prompter
{
public:
    Answer message(const QString&, MessageStyle style) override
    {
        const bool okCancel = style == MessageStyle::OkCancelQuestion ||
                              style == MessageStyle::OkCancelStop ||
                              style == MessageStyle::OkCancelInformation;
        return !asksQuestion(style) ? Answer::Ok : okCancel ? Answer::Cancel : Answer::No;
    }
    int choose(const QString&, MessageStyle, const QStringList&) override { return -1; }
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
