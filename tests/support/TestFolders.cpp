#include "support/TestFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <sys/stat.h>
#include <unistd.h>

namespace vinora::test {
namespace {

bool runChattr(const QString& flag, const QString& path)
{
    QProcess chattr;
    chattr.start(QStringLiteral("chattr"), {flag, path});
    return chattr.waitForFinished(10000) && chattr.exitStatus() == QProcess::NormalExit &&
           chattr.exitCode() == 0;
}

} // namespace

ReadOnlyFolder::ReadOnlyFolder(QString path) : m_path(std::move(path))
{
    QFile::setPermissions(m_path, QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadGroup |
                                      QFileDevice::ExeGroup | QFileDevice::ReadOther | QFileDevice::ExeOther);
    if (::geteuid() == 0) {
        m_immutable = runChattr(QStringLiteral("+i"), m_path);
    }
    m_active = ::access(QFile::encodeName(m_path).constData(), W_OK) != 0;
}

ReadOnlyFolder::~ReadOnlyFolder()
{
    if (m_immutable) {
        runChattr(QStringLiteral("-i"), m_path);
    }
    QFile::setPermissions(m_path, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(bytes);
    }
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

quint64 inodeOf(const QString& path)
{
    struct stat info
    {
    };
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_ino : 0;
}

} // namespace vinora::test
