#include "app/Program.h"

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
#include <QEvent>
#include <QLocale>
#include <QLockFile>
#include <QTimer>
#include <memory>

namespace vinora {
namespace {

// Hands the window to the watcher after its first paint has been done.
class FirstPaintFilter : public QObject
{
public:
    FirstPaintFilter(AppContext& ctx, frmMain& window, FirstPaintWatcher watcher)
        : m_ctx(ctx), m_window(window), m_watcher(std::move(watcher))
    {
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && m_watcher) {
            watched->removeEventFilter(this);
            QTimer::singleShot(0, this, [this] { m_watcher(m_ctx, m_window); });
        }
        return false;
    }

private:
    AppContext& m_ctx;
    frmMain& m_window;
    FirstPaintWatcher m_watcher;
};

} // namespace

int runProgram(int argc, char* argv[], const FirstPaintWatcher& firstPaint)
{
    GuardedApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vinora"));
    QApplication::setDesktopFileName(QStringLiteral("vinora"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/vinora.svg")));
    installRussianTranslations(app);
    // Outside a desktop session no icon theme is named; the common one serves then.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == u"hicolor") {
        QIcon::setThemeName(QStringLiteral("Adwaita"));
    }
    // The interface is Russian, and so are its dates and numbers.
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));

    QtPrompter prompter;
    SystemClock clock;
    AppContext ctx(applicationFolder(), prompter, clock);
    app.setContext(&ctx);
    // The scheme chosen in the options, else the desktop's.
    applyColorScheme(colorSchemeOf(storedScheme(ctx.ini())));
    QLockFile instanceLock(ctx.appFile(QStringLiteral("vinora.lock")));

    std::unique_ptr<frmSplashMain> splash;
    const bool proceed = Main(ctx, instanceLock, [&] {
        splash = std::make_unique<frmSplashMain>();
        splash->showAndPaint();
    });
    if (!proceed) {
        return 0;
    }

    frmMain mainWindow(ctx);
    prompter.setParentWindow(&mainWindow);
    mainWindow.Form_Load();
    splash.reset();
    FirstPaintFilter watcher(ctx, mainWindow, firstPaint);
    if (firstPaint) {
        mainWindow.installEventFilter(&watcher);
    }
    mainWindow.show();
    return QApplication::exec();
}

} // namespace vinora
