#include "support/ScriptedPrompter.h"

namespace vinora::test {

QStringList ScriptedPrompter::texts() const
{
    QStringList list;
    for (const ShownMessage& message : shown) {
        list.append(message.text);
    }
    return list;
}

Answer ScriptedPrompter::message(const QString& text, MessageStyle style)
{
    shown.append({text, style});
    if (!asksQuestion(style)) {
        return Answer::Ok;
    }
    if (m_answers.isEmpty()) {
        throw UnexpectedPrompt{text};
    }
    return m_answers.dequeue();
}

int ScriptedPrompter::choose(const QString& text, MessageStyle icon, const QStringList& buttons)
{
    shown.append({text + u'\n' + u'[' + buttons.join(QStringLiteral("] [")) + u']', icon});
    if (m_choices.isEmpty()) {
        throw UnexpectedPrompt{text};
    }
    return m_choices.dequeue();
}

std::optional<QString> ScriptedPrompter::input(const QString& prompt, const QString&, const QString&)
{
    shown.append({prompt, MessageStyle::Plain});
    if (m_inputs.isEmpty()) {
        throw UnexpectedPrompt{prompt};
    }
    return m_inputs.dequeue();
}

QString ScriptedPrompter::nextPath(const QString& title)
{
    shown.append({title, MessageStyle::Plain});
    if (m_paths.isEmpty()) {
        throw UnexpectedPrompt{title};
    }
    return m_paths.dequeue();
}

QString ScriptedPrompter::openFile(const QString& title, const QString&, const QString&)
{
    return nextPath(title);
}

QString ScriptedPrompter::saveFile(const QString& title, const QString&, const QString&)
{
    return nextPath(title);
}

QString ScriptedPrompter::chooseFolder(const QString& title, const QString&)
{
    return nextPath(title);
}

int ScriptedPrompter::showModal(QDialog& dialog)
{
    if (m_modals.isEmpty()) {
        throw UnexpectedPrompt{dialog.objectName()};
    }
    return m_modals.dequeue()(dialog);
}

bool ScriptedPrompter::openUrl(const QUrl& url)
{
    openedUrls.append(url);
    return true;
}

TestApp::TestApp() : ctx(folder.path(), prompter, clock)
{
    ctx.setProcessEnder([](int code) { throw ProcessEnded{code}; });
}

} // namespace vinora::test
