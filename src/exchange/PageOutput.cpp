#include "exchange/PageOutput.h"

#include "frame/AppError.h"
#include "frame/Cp1251.h"
#include "store/FileReplace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vinora {
namespace {

std::atomic<int> g_failAt{0};
std::atomic<int> g_failError{0};

// The text is encoded and written in pieces of about this many characters.
constexpr qsizetype kFlushChars = 1 << 16;

QString reasonText(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
        return QStringLiteral("нет доступа");
    case EROFS:
        return QStringLiteral("диск доступен только для чтения");
    case ENOSPC:
    case EDQUOT:
        return QStringLiteral("на диске нет места");
    case EFBIG:
        return QStringLiteral("файл слишком велик");
    case ENOENT:
    case ENOTDIR:
        return QStringLiteral("папка не найдена");
    case EISDIR:
        return QStringLiteral("на месте файла стоит папка");
    case ENAMETOOLONG:
        return QStringLiteral("слишком длинное имя");
    case EIO:
        return QStringLiteral("ошибка ввода-вывода");
    default:
        return QString::fromLocal8Bit(std::strerror(error));
    }
}

int writeErrorNumber(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
    case EROFS:
        return err::PathFileAccess;
    case EISDIR:
        return err::FileNotFound;
    case EIO:
    case ENXIO:
    case ENODEV:
    case ENOMEDIUM:
    case ENAMETOOLONG:
    case EINVAL:
        return err::BadFileNameOrNumber;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return err::DiskFull;
    case ENOENT:
    case ENOTDIR:
        return err::PathNotFound;
    default:
        return err::DeviceIo;
    }
}

int readErrorNumber(int error)
{
    switch (error) {
    case ENOENT:
    case EACCES:
    case EPERM:
    case EISDIR:
        return err::FileNotFound;
    case EIO:
    case ENXIO:
    case ENODEV:
    case ENOMEDIUM:
        return err::BadFileNameOrNumber;
    default:
        return err::DeviceIo;
    }
}

[[noreturn]] void failWrite(int error, const QString& path)
{
    throw AppError(writeErrorNumber(error), QStringLiteral("Не удалось записать \"") +
                                                QDir::toNativeSeparators(path) + QStringLiteral("\": ") +
                                                reasonText(error));
}

[[noreturn]] void failRead(int error, const QString& path)
{
    throw AppError(readErrorNumber(error), QStringLiteral("Не удалось прочитать \"") +
                                               QDir::toNativeSeparators(path) + QStringLiteral("\": ") +
                                               reasonText(error));
}

QByteArray nativeName(const QString& path)
{
    return QFile::encodeName(path);
}

// One write(2), or the failure a test asked for.
ssize_t writeSome(int fd, const char* data, size_t size)
{
    if (g_failAt.load() > 0 && g_failAt.fetch_sub(1) == 1) {
        errno = g_failError.load();
        return -1;
    }
    return ::write(fd, data, size);
}

void writeAll(int fd, const QByteArray& bytes, const QString& path)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t put = writeSome(fd, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put <= 0) {
            failWrite(put < 0 ? errno : ENOSPC, path);
        }
        done += put;
    }
}

// Makes `path`; a failure is told of `shownAs`, the file the user asked for.
int createFile(const QString& path, const QString& shownAs)
{
    const int fd = ::open(nativeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0) {
        failWrite(errno, shownAs);
    }
    return fd;
}

void closeFile(int fd, const QString& path)
{
    if (::close(fd) != 0) {
        failWrite(errno, path);
    }
}

bool exists(const QString& path)
{
    struct stat info
    {
    };
    return ::lstat(nativeName(path).constData(), &info) == 0;
}

bool renamed(const QString& from, const QString& to)
{
    return ::rename(nativeName(from).constData(), nativeName(to).constData()) == 0;
}

void removeTree(const QString& path)
{
    if (QFileInfo(path).isDir()) {
        QDir(path).removeRecursively();
    } else {
        QFile::remove(path);
    }
}

// Where the old picture folder waits while the new one takes its place.
QString asidePathFor(const QString& folder)
{
    const QFileInfo info(folder);
    return info.dir().filePath(u'.' + info.fileName() + QStringLiteral(".old"));
}

} // namespace

PageOutput::PageOutput(QString target) : m_target(std::move(target)), m_partial(partialPathFor(m_target))
{
    if (QFileInfo(m_target).isDir()) {
        failWrite(EISDIR, m_target);
    }
    ::unlink(nativeName(m_partial).constData()); // a leftover of a run that was cut off
    m_fd = createFile(m_partial, m_target);
    m_buffer.reserve(kFlushChars + 4096);
}

PageOutput::~PageOutput()
{
    if (!m_committed) {
        discard();
    }
}

void PageOutput::discard()
{
    if (m_fd >= 0) {
        ::close(m_fd);
        m_fd = -1;
    }
    ::unlink(nativeName(m_partial).constData());
    if (!m_staging.isEmpty()) {
        removeTree(m_staging);
    }
}

void PageOutput::line(const QString& text)
{
    m_buffer += text;
    m_buffer += QStringLiteral("\r\n");
    if (m_buffer.size() >= kFlushChars) {
        flush();
    }
}

void PageOutput::flush()
{
    writeAll(m_fd, cp1251::encodeForHtml(m_buffer), m_target);
    m_buffer.clear();
}

void PageOutput::usePictureFolder(const QString& folder)
{
    if (exists(folder) && !QFileInfo(folder).isDir()) {
        failWrite(ENOTDIR, folder); // a file of that name is not ours to replace
    }
    m_folder = folder;
    m_staging = partialPathFor(folder);
    removeTree(m_staging);
    if (::mkdir(nativeName(m_staging).constData(), 0777) != 0) {
        const int error = errno;
        m_staging.clear();
        failWrite(error, folder);
    }
}

void PageOutput::copyPicture(const QString& source, const QString& name)
{
    QByteArray bytes;
    {
        const int in = ::open(nativeName(source).constData(), O_RDONLY | O_CLOEXEC);
        if (in < 0) {
            failRead(errno, source);
        }
        char chunk[65536];
        for (;;) {
            const ssize_t got = ::read(in, chunk, sizeof chunk);
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got < 0) {
                const int error = errno;
                ::close(in);
                failRead(error, source);
            }
            if (got == 0) {
                break;
            }
            bytes.append(chunk, got);
        }
        ::close(in);
    }
    const QString target = QDir(m_folder).filePath(name);
    const int out = createFile(QDir(m_staging).filePath(name), target);
    try {
        writeAll(out, bytes, target);
    } catch (...) {
        ::close(out);
        throw;
    }
    closeFile(out, target);
}

void PageOutput::installPictureFolder()
{
    const QString aside = asidePathFor(m_folder);
    const bool hadOld = exists(m_folder);
    if (hadOld) {
        removeTree(aside);
        if (!renamed(m_folder, aside)) {
            failWrite(errno, m_folder);
        }
    }
    if (!renamed(m_staging, m_folder)) {
        const int error = errno;
        if (hadOld) {
            renamed(aside, m_folder);
        }
        failWrite(error, m_folder);
    }
    m_staging.clear();
    try {
        replaceFile(m_partial, m_target);
    } catch (...) {
        removeTree(m_folder);
        if (hadOld) {
            renamed(aside, m_folder);
        }
        throw;
    }
    if (hadOld) {
        // The old folder's files are gone with it; folders someone put there are kept.
        for (const QFileInfo& sub :
             QDir(aside).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden)) {
            renamed(sub.filePath(), QDir(m_folder).filePath(sub.fileName()));
        }
        removeTree(aside);
    }
}

void PageOutput::commit()
{
    flush();
    if (::fsync(m_fd) != 0) {
        failWrite(errno, m_target);
    }
    const int fd = m_fd;
    m_fd = -1;
    closeFile(fd, m_target);
    if (m_folder.isEmpty()) {
        replaceFile(m_partial, m_target);
    } else {
        installPictureFolder();
    }
    m_committed = true;
}

void PageOutput::failWriteForTests(int nth, int error)
{
    g_failError.store(error);
    g_failAt.store(nth);
}

} // namespace vinora
