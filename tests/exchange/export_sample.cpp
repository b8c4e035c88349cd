// Makes the export tests' catalogue in a folder, as an application folder for vinora-cli.
#include "ExportFixture.h"
#include "frame/AppError.h"

#include <QCoreApplication>
#include <QDir>
#include <cstdio>

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        std::fprintf(stderr, "usage: vinora-export-sample FOLDER\n");
        return 2;
    }
    try {
        QDir().mkpath(arguments[1]);
        vinora::test::makeExportFixture(arguments[1]);
    } catch (const vinora::AppError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
