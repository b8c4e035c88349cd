#pragma once

#include <QEventLoop>
#include <QFutureWatcher>
#include <QtConcurrent/QtConcurrentRun>
#include <exception>
#include <optional>
#include <type_traits>

namespace vinora {

// Runs `work` on a thread of the pool while the window goes on painting and taking queued
// calls (a stage text, a progress value); what the user types or clicks meanwhile is held
// back. Returns the work's result, or throws its exception here, on the calling thread.
// The work touches no window and no prompter.
template <typename Work> auto runInBackground(Work&& work) -> std::invoke_result_t<Work&>
{
    using Result = std::invoke_result_t<Work&>;
    std::exception_ptr failure;
    std::conditional_t<std::is_void_v<Result>, bool, std::optional<Result>> result{};
    QEventLoop loop;
    QFutureWatcher<void> watcher;
    QObject::connect(&watcher, &QFutureWatcher<void>::finished, &loop, &QEventLoop::quit);
    watcher.setFuture(QtConcurrent::run([&] {
        try {
            if constexpr (std::is_void_v<Result>) {
                work();
            } else {
                result.emplace(work());
            }
        } catch (...) {
            failure = std::current_exception();
        }
    }));
    if (!watcher.isFinished()) {
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    watcher.waitForFinished();
    if (failure) {
        std::rethrow_exception(failure);
    }
    if constexpr (!std::is_void_v<Result>) {
        return std::move(*result);
    }
}

} // namespace vinora
