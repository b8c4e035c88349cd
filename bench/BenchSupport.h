#pragma once

// Measuring helpers shared by the benchmarks: the median of several runs, and a report
// line that counts a missed goal.
#include "frame/AppContext.h"
#include "store/Reanimator.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>
#include <limits>
#include <vector>

namespace vinora::bench {

inline int g_failures = 0;

// The goal of a figure shown for what it tells, held to nothing.
inline constexpr double kNoGoal = std::numeric_limits<double>::infinity();

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

// The median of `runs` runs in milliseconds of wall time; with VINORA_BENCH_CPU set, of this
// process's processor time instead, which a machine busy with other work inflates less (a
// figure to compare versions by, not to hold to a goal).
inline double medianMs(int runs, const std::function<void()>& work)
{
    static const bool cpu = qEnvironmentVariableIsSet("VINORA_BENCH_CPU");
    const auto now = [] {
        timespec time{};
        clock_gettime(cpu ? CLOCK_PROCESS_CPUTIME_ID : CLOCK_MONOTONIC, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    };
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const double start = now();
        work();
        times.push_back(now() - start);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// Every measured line also goes, tab-separated, to the file VINORA_BENCH_TABLE names (when
// set): what, figure, unit, reference, goal, met. bench/run.sh makes the summary table of it.
inline void record(const char* what, double value, const char* unit, const QString& reference, double goal)
{
    const bool met = value <= goal;
    g_failures += met ? 0 : 1;
    const QString goalText = std::isinf(goal)
                                 ? QStringLiteral("none")
                                 : QString::number(goal, 'f', 0) + u' ' + QString::fromUtf8(unit);
    const char* verdict = std::isinf(goal) ? "" : met ? "ok" : "MISSED";
    std::printf("%-62s %10.3f %s   goal %12s   %s\n", what, value, unit, qPrintable(goalText), verdict);
    if (!reference.isEmpty()) {
        std::printf("%-62s %s\n", "", qPrintable(reference));
    }
    std::fflush(stdout);
    const QString table = qEnvironmentVariable("VINORA_BENCH_TABLE");
    if (!table.isEmpty()) {
        QFile file(table);
        if (file.open(QIODevice::Append | QIODevice::Text)) {
            file.write(QStringLiteral("%1\t%2\t%3\t%4\t%5\t%6\n")
                           .arg(QString::fromUtf8(what))
                           .arg(value, 0, 'f',
                                value < 10    ? 2
                                : value < 100 ? 1
                                              : 0)
                           .arg(QString::fromUtf8(unit), reference)
                           .arg(goalText, QString::fromLatin1(verdict))
                           .toUtf8());
        }
    }
}

inline void report(const char* what, double ms, double goalMs)
{
    record(what, ms, "ms", {}, goalMs);
}

// A figure beside a reference measured in the same run, with a goal of its own.
inline void reportBeside(const char* what, double ms, double goalMs, const char* referenceName,
                         double referenceMs)
{
    record(what, ms, "ms",
           QStringLiteral("%1: %2 ms (%3 x)")
               .arg(QString::fromUtf8(referenceName))
               .arg(referenceMs, 0, 'f', referenceMs < 10 ? 2 : 0)
               .arg(ms / referenceMs, 0, 'f', 1),
           goalMs);
}

// A figure held against a reference measured in the same run: the goal is `factor` times it.
inline void reportAgainst(const char* what, double ms, const char* referenceName, double referenceMs,
                          double factor)
{
    reportBeside(what, ms, factor * referenceMs, referenceName, referenceMs);
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
