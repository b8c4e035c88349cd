#pragma once

// The application of the benchmarks that show windows: offscreen, in the program's locale.
#include <QApplication>
#include <QLocale>
#include <cstdio>

namespace vinora::bench {

// The offscreen platform's notes on what it cannot do would bury the figures.
inline void hideOffscreenNotes()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type != QtWarningMsg || !text.contains(QStringLiteral("propagateSizeHints"))) {
            std::fprintf(stderr, "%s\n", qPrintable(text));
        }
    });
}

class OffscreenWindows
{
public:
    OffscreenWindows(int& argc, char** argv) : m_app(offscreen(argc), argv)
    {
        QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    }

private:
    // Chooses the platform before the application is made.
    static int& offscreen(int& argc)
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        hideOffscreenNotes();
        return argc;
    }

    QApplication m_app;
};

} // namespace vinora::bench
