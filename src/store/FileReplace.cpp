#include "store/FileReplace.h"

#include "frame/AppError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace vinora {
namespace {

// 0 on success, else the reason.
int renameOver(const QString& source, const QString& target)
{
    return std::rename(QFile::encodeName(source).constData(), QFile::encodeName(target).constData()) == 0
               ? 0
               : errno;
}

[[noreturn]] void cannotReplace(const QString& target, int reason)
{
    throw AppError(err::CannotOpenFile, QStringLiteral("Cannot replace '") + target + QStringLiteral("': ") +
                                            QString::fromLocal8Bit(std::strerror(reason)));
}

} // namespace

QString partialPathFor(const QString& path)
{
    const QFileInfo info(path);
    return info.dir().filePath(u'.' + info.fileName() + QStringLiteral(".part"));
}

void replaceFile(const QString& source, const QString& target)
{
    const int reason = renameOver(source, target);
    if (reason == 0) {
        return;
    }
    if (reason != EXDEV) {
        cannotReplace(target, reason);
    }
    // Another file system: copy beside the target, then rename there.
    const QString beside = partialPathFor(target);
    QFile::remove(beside);
    if (!QFile::copy(source, beside)) {
        QFile::remove(beside);
        cannotReplace(target, EACCES);
    }
    if (const int again = renameOver(beside, target); again != 0) {
        QFile::remove(beside);
        cannotReplace(target, again);
    }
    QFile::remove(source);
}

} // namespace vinora
