#pragma once

// Measuring helpers shared by the benchmarks: the median of several runs, and a report
// line that counts a missed goal.
#include "frame/AppContext.h"
#include "store/Reanimator.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace vinora::bench {

inline int g_failures = 0;

// A fresh application folder, with its three databases unless the benchmark makes them.
struct BenchApp
{
    explicit BenchApp(bool withDatabases = true)
    {
        if (withDatabases) {
            Reanimator(ctx, 0);
        }
    }
    QTemporaryDir dir;
    UnattendedPrompter prompts;
    SystemClock clock;
    AppContext ctx{dir.path(), prompts, clock};
};

inline double medianMs(int runs, const std::function<void()>& work)
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

inline void report(const char* what, double ms, double goalMs)
{
    const bool met = ms <= goalMs;
    g_failures += met ? 0 : 1;
    std::printf("%-58s %10.3f ms   goal %9.3f ms   %s\n", what, ms, goalMs, met ? "ok" : "MISSED");
}

// Runs a tool, its output thrown away; true when it succeeded.
inline bool run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(program, arguments);
    return process.waitForFinished(600000) && process.exitCode() == 0;
}

inline int finish()
{
    std::printf("%s\n", g_failures == 0 ? "all goals met" : "some goals missed");
    return g_failures == 0 ? 0 : 1;
}

} // namespace vinora::bench
