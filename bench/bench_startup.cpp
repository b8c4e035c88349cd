// The program's start on the collection: from starting the process to the main window drawn,
// and the resident memory once each catalogue has been opened in it. The program runs as a
// process of its own (this benchmark started again with --window), offscreen, on a copy of
// the collection; it writes a line when its window is drawn and one with its memory.
#include "BenchSupport.h"
#include "BenchWindows.h"
#include "Collection.h"
#include "app/Program.h"
#include "catalogue/frmCatalogue.h"
#include "mainwindow/frmMain.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>

using namespace vinora;
using namespace vinora::bench;

namespace {

// The peak resident memory of this process in kilobytes (VmHWM of /proc/self/status).
qint64 peakResidentKb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly | QIODevice::Text);
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:")) {
            return line.mid(6).trimmed().split(' ').first().toLongLong();
        }
    }
    return 0;
}

// The program itself; once drawn, it opens each catalogue once, tells its memory and ends.
int runWindow(int argc, char* argv[])
{
    return runProgram(argc, argv, [](AppContext& ctx, frmMain& window) {
        std::printf("shown\n");
        std::fflush(stdout);
        for (const Category category : allCategories()) {
            auto catalogue = std::make_unique<frmCatalogue>(ctx, category, &window);
            catalogue->show();
            QApplication::processEvents();
            catalogue->close();
        }
        std::printf("memory %lld\n", peakResidentKb());
        std::fflush(stdout);
        QCoreApplication::exit(0);
    });
}

struct Start
{
    double shownMs = 0;
    qint64 memoryKb = 0;
};

Start startWindow(const QString& folder)
{
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VINORA_HOME"), folder);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer timer;
    timer.start();
    program.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--window")});
    Start start;
    while (program.waitForReadyRead(60000) || program.canReadLine()) {
        while (program.canReadLine()) {
            const QByteArray line = program.readLine().trimmed();
            if (line == "shown") {
                start.shownMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
            } else if (line.startsWith("memory ")) {
                start.memoryKb = line.mid(7).toLongLong();
            }
        }
        if (start.memoryKb > 0) {
            break;
        }
    }
    program.waitForFinished(60000);
    if (start.shownMs == 0 || start.memoryKb == 0 || program.exitCode() != 0) {
        std::printf("the program did not start and end as expected (exit %d)\n", program.exitCode());
        ++g_failures;
    }
    return start;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc > 1 && qstrcmp(argv[1], "--window") == 0) {
        hideOffscreenNotes();
        return runWindow(argc, argv);
    }
    QCoreApplication app(argc, argv);
    const Collection collection = benchCollection();
    describeCollection(collection);
    const QString work = QDir(benchDataFolder()).filePath(QStringLiteral("startup-work"));
    copyCollection(collection, work);
    // The first start opens the databases from the disc; the program is measured as it
    // starts again and again on a machine in use, with them in the page cache.
    startWindow(work);
    std::vector<Start> starts;
    for (int i = 0; i < 5; ++i) {
        starts.push_back(startWindow(work));
    }
    std::sort(starts.begin(), starts.end(),
              [](const Start& a, const Start& b) { return a.shownMs < b.shownMs; });
    report("start-up to the drawn main window", starts[2].shownMs, 500);
    qint64 memory = 0;
    for (const Start& start : starts) {
        memory = std::max(memory, start.memoryKb);
    }
    record("resident memory, each catalogue opened once (peak)", static_cast<double>(memory) / 1024.0, "MB",
           {}, 150);
    QDir(work).removeRecursively();
    return finish();
}
