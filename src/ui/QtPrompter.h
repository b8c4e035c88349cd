#pragma once

#include "frame/Prompter.h"

class QWidget;

namespace vinora {

// The prompts of the running program: Qt's message boxes, input box and file choosers.
class QtPrompter final : public Prompter
{
public:
    // Title of every message box.
    static QString title();

    void setParentWindow(QWidget* parent) { m_parent = parent; }

    Answer message(const QString& text, MessageStyle style) override;
    int choose(const QString& text, MessageStyle icon, const QStringList& buttons) override;
    std::optional<QString> input(const QString& prompt, const QString& title,
                                 const QString& initial) override;
    QString openFile(const QString& title, const QString& filter, const QString& startPath) override;
    QString saveFile(const QString& title, const QString& filter, const QString& startPath) override;
    QString chooseFolder(const QString& title, const QString& startFolder) override;
    int showModal(QDialog& dialog) override;
    bool openUrl(const QUrl& url) override;

private:
    QWidget* m_parent = nullptr;
};

// "Name (*.db)|*.db|All (*.*)|*.*" as a Qt file dialog filter: "Name (*.db);;All (*.*)".
QString qtFileFilter(const QString& pipeFilter);

} // namespace vinora
