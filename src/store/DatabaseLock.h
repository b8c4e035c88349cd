#pragma once

#include <QString>
#include <optional>

namespace vinora {

// Cooperation between the processes working on one set of databases (the window and
// vinora-cli). A process that writes rows holds the lock shared for as long as it works;
// maintenance that must have the databases to itself (compaction, restore, rebuilding a
// database that exists) holds it exclusively. The engine's own locks keep every single
// write safe; this lock keeps long maintenance from starting under a working writer and a
// writer from failing on a busy timeout while maintenance runs.
//
// The lock is an flock() on a file beside the main database, so it is let go when the
// process ends, however it ends. Where that file cannot be made (a read-only folder) the
// lock is granted without it: nothing can be written there anyway.
class DatabaseLock
{
public:
    enum class Mode { Shared, Exclusive };

    // The lock file of the databases whose main database is `mainDatabasePath`.
    static QString lockPathFor(const QString& mainDatabasePath);

    // Granted at once or not at all.
    static std::optional<DatabaseLock> tryAcquire(const QString& mainDatabasePath, Mode mode);
    // Waits until granted; `whileWaiting` is called once when the lock is not free at once.
    template <typename Notice>
    static DatabaseLock acquire(const QString& mainDatabasePath, Mode mode, Notice&& whileWaiting)
    {
        if (auto lock = tryAcquire(mainDatabasePath, mode)) {
            return std::move(*lock);
        }
        whileWaiting();
        return acquireBlocking(mainDatabasePath, mode);
    }

    DatabaseLock(DatabaseLock&& other) noexcept;
    DatabaseLock& operator=(DatabaseLock&& other) noexcept;
    DatabaseLock(const DatabaseLock&) = delete;
    DatabaseLock& operator=(const DatabaseLock&) = delete;
    ~DatabaseLock();

private:
    explicit DatabaseLock(int fd) : m_fd(fd) {}
    static DatabaseLock acquireBlocking(const QString& mainDatabasePath, Mode mode);

    int m_fd = -1;
};

} // namespace vinora
