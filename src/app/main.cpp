#include "app/Startup.h"
#include "frame/AppContext.h"
#include "frame/Clock.h"
#include "mainwindow/frmMain.h"
#include "mainwindow/frmSplashMain.h"
#include "options/frmOption.h"
#include "ui/DesktopTheme.h"
#include "ui/GuardedApplication.h"
#include "ui/QtPrompter.h"

#include <QApplication>
#include <QLocale>
#include <QLockFile>
#include <memory>

int main(int argc, char* argv[])
{
    vinora::GuardedApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vinora"));
    QApplication::setDesktopFileName(QStringLiteral("vinora"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/vinora.svg")));
    vinora::installRussianTranslations(app);
    // Outside a desktop session no icon theme is named; the common one serves then.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == u"hicolor") {
        QIcon::setThemeName(QStringLiteral("Adwaita"));
    }
    // The interface is Russian, and so are its dates and numbers.
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));

    vinora::QtPrompter prompter;
    vinora::SystemClock clock;
    vinora::AppContext ctx(vinora::applicationFolder(), prompter, clock);
    app.setContext(&ctx);
    // The scheme chosen in the options, else the desktop's.
    vinora::applyColorScheme(vinora::colorSchemeOf(vinora::storedScheme(ctx.ini())));
    QLockFile instanceLock(ctx.appFile(QStringLiteral("vinora.lock")));

    std::unique_ptr<vinora::frmSplashMain> splash;
    const bool proceed = vinora::Main(ctx, instanceLock, [&] {
        splash = std::make_unique<vinora::frmSplashMain>();
        splash->showAndPaint();
    });
    if (!proceed) {
        return 0;
    }

    vinora::frmMain mainWindow(ctx);
    prompter.setParentWindow(&mainWindow);
    mainWindow.Form_Load();
    splash.reset();
    mainWindow.show();
    return QApplication::exec();
}
