#pragma once

#include "frame/AppContext.h"
#include "frame/Prompter.h"

#include <QDateTime>
#include <QDialog>
#include <QList>
#include <QQueue>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>
#include <functional>

namespace vinora::test {

// A question that the script had no answer for. Not a std::exception, so that no
// handler of the program takes it for an error of its own.
struct UnexpectedPrompt
{
    QString text;
};

struct ShownMessage
{
    QString text;
    MessageStyle style;
};

// Answers prompts from a queue and keeps everything it was shown.
class ScriptedPrompter final : public Prompter
{
public:
    QList<ShownMessage> shown;

    void answer(Answer next) { m_answers.enqueue(next); }
    void answerInput(std::optional<QString> next) { m_inputs.enqueue(std::move(next)); }
    // The index of the button pressed in the next `choose`, -1 for closing the box.
    void answerChoice(int next) { m_choices.enqueue(next); }
    void answerPath(QString next) { m_paths.enqueue(std::move(next)); }
    // The next modal window is handed to `handler`, whose result is the window's result.
    void handleModal(std::function<int(QDialog&)> handler) { m_modals.enqueue(std::move(handler)); }

    QStringList texts() const;
    bool unanswered() const
    {
        return m_answers.isEmpty() && m_inputs.isEmpty() && m_paths.isEmpty() && m_choices.isEmpty();
    }

    Answer message(const QString& text, MessageStyle style) override;
    int choose(const QString& text, MessageStyle icon, const QStringList& buttons) override;
    std::optional<QString> input(const QString& prompt, const QString& title,
                                 const QString& initial) override;
    QString openFile(const QString& title, const QString& filter, const QString& startPath) override;
    QString saveFile(const QString& title, const QString& filter, const QString& startPath) override;
    QString chooseFolder(const QString& title, const QString& startFolder) override;
    int showModal(QDialog& dialog) override;
    bool openUrl(const QUrl& url) override;

    QList<QUrl> openedUrls;

private:
    QString nextPath(const QString& title);

    QQueue<Answer> m_answers;
    QQueue<std::optional<QString>> m_inputs;
    QQueue<int> m_choices;
    QQueue<QString> m_paths;
    QQueue<std::function<int(QDialog&)>> m_modals;
};

class FixedClock final : public Clock
{
public:
    explicit FixedClock(QDateTime now) : m_now(std::move(now)) {}
    QDateTime now() const override { return m_now; }
    void set(QDateTime now) { m_now = std::move(now); }

private:
    QDateTime m_now;
};

// A fresh application folder with a context whose process ending throws ProcessEnded.
struct TestApp
{
    TestApp();
    QString file(const QString& name) const { return ctx.appFile(name); }

    QTemporaryDir folder;
    ScriptedPrompter prompter;
    FixedClock clock{QDateTime(QDate(2026, 11, 22), QTime(14, 5, 9))};
    AppContext ctx;
};

} // namespace vinora::test
