#include "store/DatabaseLock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace vinora {
namespace {

int openLockFile(const QString& mainDatabasePath)
{
    const QByteArray name = QFile::encodeName(DatabaseLock::lockPathFor(mainDatabasePath));
    return ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
}

int operationOf(DatabaseLock::Mode mode)
{
    return mode == DatabaseLock::Mode::Shared ? LOCK_SH : LOCK_EX;
}

} // namespace

QString DatabaseLock::lockPathFor(const QString& mainDatabasePath)
{
    return QFileInfo(mainDatabasePath).dir().filePath(QStringLiteral("vinora-databases.lock"));
}

std::optional<DatabaseLock> DatabaseLock::tryAcquire(const QString& mainDatabasePath, Mode mode)
{
    const int fd = openLockFile(mainDatabasePath);
    if (fd < 0) {
        return DatabaseLock(-1);
    }
    int result = 0;
    do {
        result = ::flock(fd, operationOf(mode) | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result != 0) {
        ::close(fd);
        return std::nullopt;
    }
    return DatabaseLock(fd);
}

DatabaseLock DatabaseLock::acquireBlocking(const QString& mainDatabasePath, Mode mode)
{
    const int fd = openLockFile(mainDatabasePath);
    if (fd >= 0) {
        while (::flock(fd, operationOf(mode)) != 0 && errno == EINTR) {
        }
    }
    return DatabaseLock(fd);
}

DatabaseLock::DatabaseLock(DatabaseLock&& other) noexcept : m_fd(other.m_fd)
{
    other.m_fd = -1;
}

DatabaseLock& DatabaseLock::operator=(DatabaseLock&& other) noexcept
{
    if (this != &other) {
        if (m_fd >= 0) {
            ::close(m_fd);
        }
        m_fd = other.m_fd;
        other.m_fd = -1;
    }
    return *this;
}

DatabaseLock::~DatabaseLock()
{
    if (m_fd >= 0) {
        ::close(m_fd); // closing the last descriptor lets the lock go
    }
}

} // namespace vinora
