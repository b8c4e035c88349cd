// vinora-cli: the catalogue's drives, discs and file lists from the command line, for
// scripts. Each verb lives with its group (DriveVerbs, ScanVerbs); `vinora-cli --help`
// lists them.
#include "cli/Registry.h"

#include <QCoreApplication>
#include <QLocale>

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    // Numbers and dates as the program writes them.
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    return vinora::cli::runTool(QCoreApplication::arguments().mid(1));
}
