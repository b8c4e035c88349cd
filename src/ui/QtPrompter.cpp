#include "ui/QtPrompter.h"

#include "ui/TitleWidth.h"
#include "ui/WaitCursor.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>

namespace vinora {
namespace {

struct BoxKind
{
    QMessageBox::Icon icon;
    QMessageBox::StandardButtons buttons;
};

BoxKind boxKind(MessageStyle style)
{
    switch (style) {
    case MessageStyle::Stop:
        return {QMessageBox::Critical, QMessageBox::Ok};
    case MessageStyle::Question:
        return {QMessageBox::Question, QMessageBox::Ok};
    case MessageStyle::OkCancelQuestion:
        return {QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel};
    case MessageStyle::OkCancelInformation:
        return {QMessageBox::Information, QMessageBox::Ok | QMessageBox::Cancel};
    case MessageStyle::YesNoCancelQuestion:
        return {QMessageBox::Question, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel};
    case MessageStyle::YesNoQuestion:
        return {QMessageBox::Question, QMessageBox::Yes | QMessageBox::No};
    case MessageStyle::Exclamation:
        return {QMessageBox::Warning, QMessageBox::Ok};
    case MessageStyle::OkCancelStop:
        return {QMessageBox::Critical, QMessageBox::Ok | QMessageBox::Cancel};
    case MessageStyle::YesNoExclamation:
        return {QMessageBox::Warning, QMessageBox::Yes | QMessageBox::No};
    case MessageStyle::Information:
        return {QMessageBox::Information, QMessageBox::Ok};
    case MessageStyle::YesNo:
        return {QMessageBox::NoIcon, QMessageBox::Yes | QMessageBox::No};
    case MessageStyle::Plain:
        break;
    }
    return {QMessageBox::NoIcon, QMessageBox::Ok};
}

QWidget* parentFor(QWidget* parent)
{
    return parent ? parent : QApplication::activeWindow();
}

} // namespace

QString QtPrompter::title()
{
    return QStringLiteral("vinora");
}

Answer QtPrompter::message(const QString& text, MessageStyle style)
{
    const NormalCursor pointer;
    const BoxKind kind = boxKind(style);
    QMessageBox box(kind.icon, style == MessageStyle::Plain ? QString() : title(), text, kind.buttons,
                    parentFor(m_parent));
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Cancel:
        return Answer::Cancel;
    default:
        // Closing a Yes/No box by its frame counts as No, an OK/Cancel box as Cancel.
        if (kind.buttons.testFlag(QMessageBox::No) && box.clickedButton() == nullptr) {
            return Answer::No;
        }
        return Answer::Ok;
    }
}

int QtPrompter::choose(const QString& text, MessageStyle icon, const QStringList& buttons)
{
    const NormalCursor pointer;
    QMessageBox box(boxKind(icon).icon, title(), text, QMessageBox::NoButton, parentFor(m_parent));
    QList<QAbstractButton*> added;
    for (const QString& caption : buttons) {
        added.append(box.addButton(caption, QMessageBox::AcceptRole));
    }
    if (!added.isEmpty()) {
        box.setDefaultButton(qobject_cast<QPushButton*>(added.first()));
    }
    box.exec();
    return static_cast<int>(added.indexOf(box.clickedButton()));
}

std::optional<QString> QtPrompter::input(const QString& prompt, const QString& title, const QString& initial)
{
    const NormalCursor pointer;
    bool ok = false;
    const QString text =
        QInputDialog::getText(parentFor(m_parent), title, prompt, QLineEdit::Normal, initial, &ok);
    return ok ? std::optional<QString>(text) : std::nullopt;
}

QString QtPrompter::openFile(const QString& title, const QString& filter, const QString& startPath)
{
    const NormalCursor pointer;
    return QFileDialog::getOpenFileName(parentFor(m_parent), title, startPath, qtFileFilter(filter));
}

QString QtPrompter::saveFile(const QString& title, const QString& filter, const QString& startPath)
{
    const NormalCursor pointer;
    return QFileDialog::getSaveFileName(parentFor(m_parent), title, startPath, qtFileFilter(filter));
}

QString QtPrompter::chooseFolder(const QString& title, const QString& startFolder)
{
    const NormalCursor pointer;
    return QFileDialog::getExistingDirectory(parentFor(m_parent), title, startFolder);
}

int QtPrompter::showModal(QDialog& dialog)
{
    const NormalCursor pointer;
    keepTitleVisible(&dialog);
    return dialog.exec();
}

bool QtPrompter::openUrl(const QUrl& url)
{
    return QDesktopServices::openUrl(url);
}

QString qtFileFilter(const QString& pipeFilter)
{
    const QStringList parts = pipeFilter.split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        // "*.*" meant every file; here a name need not have a dot.
        QString patterns = parts[i + 1];
        patterns.replace(QStringLiteral("*.*"), QStringLiteral("*")).replace(u';', u' ');
        const QString label = parts[i].left(parts[i].indexOf(u'(')).trimmed();
        filters.append(label + QStringLiteral(" (") + patterns + u')');
    }
    return filters.join(QStringLiteral(";;"));
}

} // namespace vinora
