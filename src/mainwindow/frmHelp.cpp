#include "mainwindow/frmHelp.h"

#include "frame/AppContext.h"
#include "frame/ProgramInfo.h"
#include "frame/Version.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QUrl>
#include <QVBoxLayout>

namespace vinora {

QString shippedFile(const QString& relativePath)
{
    const QString installed = QDir(QCoreApplication::applicationDirPath())
                                  .filePath(QStringLiteral("../share/vinora/") + relativePath);
    if (QFileInfo::exists(installed)) {
        return QFileInfo(installed).absoluteFilePath();
    }
    return QDir(QString::fromUtf8(kSourceResources)).filePath(relativePath);
}

QString frmHelp::versionText()
{
    return programBuildText();
}

frmHelp::frmHelp(AppContext& ctx, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmHelp"));
    setWindowTitle(QStringLiteral("О программе"));
    auto* layout = new QVBoxLayout(this);
    auto* logo = new QLabel(this);
    logo->setPixmap(QIcon(QStringLiteral(":/icons/vinora.svg")).pixmap(96, 96));
    logo->setAlignment(Qt::AlignCenter);
    layout->addWidget(logo);
    auto* version = new QLabel(versionText(), this);
    version->setObjectName(QStringLiteral("lblVersion"));
    version->setAlignment(Qt::AlignCenter);
    layout->addWidget(version);
    const auto link = [&](const char* name, const QString& text, const QUrl& target) {
        auto* label = new QLabel(QStringLiteral("<a href=\"%1\">%2</a>")
                                     .arg(target.toString(QUrl::FullyEncoded), text.toHtmlEscaped()),
                                 this);
        label->setObjectName(QString::fromLatin1(name));
        label->setAlignment(Qt::AlignCenter);
        label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
        connect(label, &QLabel::linkActivated, this,
                [&ctx](const QString& url) { ctx.prompter().openUrl(QUrl(url)); });
        layout->addWidget(label);
    };
    const QString mail = QString::fromUtf8(kSupportAddress);
    link("lblEMail", mail, QUrl(QStringLiteral("mailto:") + mail));
    link("lblURL", QString::fromUtf8(kHomepage), QUrl(QString::fromUtf8(kHomepage)));
    link("lblURLForum", QStringLiteral("Форум пользователей"), QUrl(QString::fromUtf8(kForum)));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

} // namespace vinora
