#include "store/FileErrors.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace vinora {

AppError fileSystemError(int errnoValue, const QString& path)
{
    int number = err::PathFileAccess;
    switch (errnoValue) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        number = err::DiskFull;
        break;
    case ENOENT:
    case ENOTDIR:
    case ENODEV:
    case ENXIO:
    case ENOMEDIUM:
    case EIO:
    case ESTALE:
        number = err::BadFileNameOrNumber;
        break;
    case EACCES:
    case EPERM:
    case EBUSY:
    case EISDIR:
    case ETXTBSY:
        number = err::FileNotFound;
        break;
    default: // EROFS and the rest: the folder takes no writes
        break;
    }
    return AppError(number, QString::fromLocal8Bit(std::strerror(errnoValue)) + QStringLiteral(" ('") + path +
                                QStringLiteral("')"));
}

void checkWritableFolder(const QString& folder)
{
    const QByteArray name = QFile::encodeName(folder);
    if (!QFileInfo(folder).isDir()) {
        throw fileSystemError(QFileInfo::exists(folder) ? ENOTDIR : ENOENT, folder);
    }
    if (::access(name.constData(), W_OK | X_OK) != 0) {
        // Whatever keeps writes out (permissions, the immutable flag, a read-only mount), the
        // folder is read-only to us.
        const bool refused = errno == EACCES || errno == EPERM || errno == EROFS;
        throw fileSystemError(refused ? EROFS : errno, folder);
    }
}

void moveOver(const QString& source, const QString& target)
{
    if (std::rename(QFile::encodeName(source).constData(), QFile::encodeName(target).constData()) != 0) {
        throw fileSystemError(errno, target);
    }
}

void replaceTogether(const QList<std::pair<QString, QString>>& moves)
{
    for (const auto& [made, target] : moves) {
        const QFileInfo standing(target);
        if ((standing.exists() || standing.isSymLink()) && (!standing.isFile() || standing.isSymLink())) {
            throw fileSystemError(EISDIR, target);
        }
    }
    QList<std::pair<QString, QString>> aside; // target, where it went
    QList<std::pair<QString, QString>> movedIn;
    try {
        for (const auto& [made, target] : moves) {
            if (QFileInfo::exists(target)) {
                const QString old = target + QStringLiteral(".old");
                removeFile(old);
                moveOver(target, old);
                aside.append({target, old});
            }
        }
        for (const auto& [made, target] : moves) {
            moveOver(made, target);
            movedIn.append({made, target});
        }
    } catch (const AppError&) {
        for (const auto& [made, target] : movedIn) {
            std::rename(QFile::encodeName(target).constData(), QFile::encodeName(made).constData());
        }
        for (const auto& [target, old] : aside) {
            std::rename(QFile::encodeName(old).constData(), QFile::encodeName(target).constData());
        }
        throw;
    }
    for (const auto& [target, old] : aside) {
        QFile::remove(old);
    }
}

void removeFile(const QString& path)
{
    if (::unlink(QFile::encodeName(path).constData()) != 0 && errno != ENOENT) {
        throw fileSystemError(errno, path);
    }
}

AppError databasesBusyError()
{
    return AppError(err::DatabasesBusy,
                    QStringLiteral("С базами данных сейчас работает другая программа (vinora-cli)."));
}

} // namespace vinora
