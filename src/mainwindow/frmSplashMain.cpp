#include "mainwindow/frmSplashMain.h"

#include "frame/ProgramInfo.h"

#include <QLabel>
#include <QVBoxLayout>

namespace vinora {

frmSplashMain::frmSplashMain(QWidget* parent) : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint)
{
    setObjectName(QStringLiteral("frmSplashMain"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 24, 32, 24);
    auto* logo = new QLabel(this);
    logo->setPixmap(QIcon(QStringLiteral(":/icons/vinora.svg")).pixmap(96, 96));
    logo->setAlignment(Qt::AlignCenter);
    layout->addWidget(logo);
    auto* text = new QLabel(labelText(), this);
    text->setObjectName(QStringLiteral("lblVersion"));
    text->setAlignment(Qt::AlignCenter);
    layout->addWidget(text);
}

QString frmSplashMain::labelText()
{
    return programBuildText() +
           QStringLiteral("\nКаталог аудио, компьютерных и DVD дисков\nСвободная программа для Linux");
}

void frmSplashMain::showAndPaint()
{
    show();
    repaint();
}

} // namespace vinora
