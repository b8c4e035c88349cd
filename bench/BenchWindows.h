#pragma once

// The application of the benchmarks that show windows: offscreen, in the program's locale.
#include <QApplication>
#include <QLocale>

namespace vinora::bench {

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
        return argc;
    }

    QApplication m_app;
};

} // namespace vinora::bench
