#include "recognition/ImageProbe.h"

#include "recognition/VolumeReader.h"

#include <QFile>
#include <QHash>
#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <limits>
#include <mutex>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// Present when the program runs under a sanitizer; the child must not run the death
// callbacks of the parent's tooling (a fuzzer saving its input, for one).
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace vinora {
namespace {

constexpr std::chrono::seconds kCdImageLimit(15);
// A DVD image's whole walk, MP3 tags included, is slower than any CD's.
constexpr std::chrono::seconds kUdfLimit(180);
// Verdicts kept; more images than this are not polled by one process.
constexpr int kMostVerdicts = 256;

std::mutex g_probeLock;
QHash<QString, bool> g_verdicts;
std::atomic<int> g_probes{0};
std::atomic<qint64> g_capMs{std::numeric_limits<qint64>::max()};

// The file as it is now: a changed file gets a new verdict.
QString verdictKey(const QString& path, ProbeKind kind)
{
    struct stat st = {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0) {
        return {};
    }
    return QStringLiteral("%1|%2|%3|%4|%5|%6.%7|%8.%9")
        .arg(int(kind))
        .arg(path)
        .arg(quint64(st.st_dev))
        .arg(quint64(st.st_ino))
        .arg(qint64(st.st_size))
        .arg(qint64(st.st_mtim.tv_sec))
        .arg(qint64(st.st_mtim.tv_nsec))
        .arg(qint64(st.st_ctim.tv_sec))
        .arg(qint64(st.st_ctim.tv_nsec));
}

// In the child: no output, and a crash ends the process by its signal.
void quietChild()
{
    const int null = ::open("/dev/null", O_WRONLY);
    if (null >= 0) {
        ::dup2(null, STDOUT_FILENO);
        ::dup2(null, STDERR_FILENO);
    }
    for (const int signal : {SIGSEGV, SIGBUS, SIGABRT, SIGILL, SIGFPE}) {
        std::signal(signal, SIG_DFL);
    }
    if (__sanitizer_set_death_callback != nullptr) {
        __sanitizer_set_death_callback(nullptr);
    }
}

} // namespace

bool runInChild(const std::function<void()>& work, std::chrono::milliseconds limit)
{
    ++g_probes;
    const pid_t child = ::fork();
    if (child < 0) {
        return false;
    }
    if (child == 0) {
        // Only the probe's own work runs here, then the child leaves without cleaning up
        // what belongs to the parent's threads.
        quietChild();
        try {
            work();
        } catch (...) {
            ::_exit(2);
        }
        ::_exit(0);
    }
    const auto deadline = std::chrono::steady_clock::now() + limit;
    auto pause = std::chrono::microseconds(200);
    int status = 0;
    for (;;) {
        const pid_t done = ::waitpid(child, &status, WNOHANG);
        if (done == child) {
            break;
        }
        if (done < 0 && errno != EINTR) {
            return false;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            ::kill(child, SIGKILL);
            while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
            }
            return false;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, std::chrono::microseconds(20000));
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool imageSurvivesProbe(const QString& path, ProbeKind kind, const std::function<void()>& work)
{
    const std::lock_guard<std::mutex> lock(g_probeLock);
    const QString key = verdictKey(path, kind);
    if (key.isEmpty()) {
        return false;
    }
    if (const auto known = g_verdicts.constFind(key); known != g_verdicts.constEnd()) {
        return *known;
    }
    const std::chrono::milliseconds limit = kind == ProbeKind::UdfVolume ? kUdfLimit : kCdImageLimit;
    const bool survived = runInChild(work, std::min(limit, std::chrono::milliseconds(g_capMs.load())));
    if (g_verdicts.size() >= kMostVerdicts) {
        g_verdicts.clear();
    }
    // A file changed while it was probed is probed again next time.
    if (verdictKey(path, kind) == key) {
        g_verdicts.insert(key, survived);
    }
    return survived;
}

void walkAsScan(VolumeReader& volume)
{
    struct Pending
    {
        QString folder;
        int depth;
    };
    QList<Pending> pending{{QString(), 0}};
    while (!pending.isEmpty()) {
        const Pending next = pending.takeLast();
        const auto entries = volume.list(next.folder);
        if (!entries) {
            continue;
        }
        for (const VolumeEntry& entry : *entries) {
            const QString path = next.folder.isEmpty() ? entry.name : next.folder + u'/' + entry.name;
            if (entry.isFolder) {
                if (next.depth < kDeepestFolder) {
                    pending.append({path, next.depth + 1});
                }
            } else if (entry.name.contains(QStringLiteral(".mp3"), Qt::CaseInsensitive)) {
                (void)volume.tail(path, 128);
            }
        }
    }
}

int imageProbeCount()
{
    return g_probes.load();
}

void capImageProbeTime(std::chrono::milliseconds limit)
{
    g_capMs = limit.count();
}

} // namespace vinora
