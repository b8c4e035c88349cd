#include "mainwindow/HelpViewer.h"

#include "frame/AppContext.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QFileInfo>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace vinora {

HelpViewer::HelpViewer(AppContext& ctx, QWidget* parent) : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmHelpViewer"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    auto* layout = new QVBoxLayout(this);
    m_browser = new QTextBrowser(this);
    m_browser->setObjectName(QStringLiteral("txtHelp"));
    m_browser->setOpenLinks(false);
    connect(m_browser, &QTextBrowser::anchorClicked, this, &HelpViewer::followLink);
    connect(m_browser, &QTextBrowser::sourceChanged, this, [this] {
        const QString title = m_browser->documentTitle();
        setWindowTitle(title.isEmpty() ? QFileInfo(m_browser->source().toLocalFile()).fileName() : title);
    });
    layout->addWidget(m_browser);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    layout->addWidget(buttons);
    resize(720, 560);
}

void HelpViewer::showFile(const QString& file)
{
    const QString suffix = QFileInfo(file).suffix().toLower();
    if (suffix == u"htm" || suffix == u"html") {
        m_browser->setSource(QUrl::fromLocalFile(file), QTextDocument::HtmlResource);
    } else {
        // A text file is shown as it stands, never read as markup.
        QFile text(file);
        m_browser->setPlainText(text.open(QIODevice::ReadOnly) ? QString::fromUtf8(text.readAll()) : QString());
        setWindowTitle(QFileInfo(file).fileName());
    }
    show();
    raise();
    activateWindow();
}

void HelpViewer::followLink(const QUrl& link)
{
    const QUrl target = m_browser->source().resolved(link);
    if (target.isLocalFile() && QFileInfo::exists(target.toLocalFile())) {
        showFile(target.toLocalFile());
    } else {
        m_ctx.prompter().openUrl(link);
    }
}

} // namespace vinora
