#include "recognition/FolderVolumeReader.h"

#include <QDir>
#include <QFile>
#include <dirent.h>
#include <sys/stat.h>

namespace vinora {
namespace {

constexpr qint64 kChunk = 256 * 1024;

std::optional<struct stat> lstatOf(const QByteArray& path)
{
    struct stat st = {};
    if (::lstat(path.constData(), &st) != 0) {
        return std::nullopt;
    }
    return st;
}

std::optional<struct stat> lstatOf(const QString& path)
{
    return lstatOf(QFile::encodeName(path));
}

// The folder `folder` below the root when every step of it is a real folder (no symbolic
// link), none of them is a folder it lies in (a bind mount's cycle), and it nests no deeper
// than a disc can; empty otherwise. The root itself may be reached through links: it is
// where the disc is mounted.
QString realFolder(const QString& root, const QString& folder)
{
    const QStringList names = folder.split(u'/', Qt::SkipEmptyParts);
    struct stat rootStat = {};
    if (names.size() > kDeepestFolder || ::stat(QFile::encodeName(root).constData(), &rootStat) != 0 ||
        !S_ISDIR(rootStat.st_mode)) {
        return {};
    }
    QList<std::pair<dev_t, ino_t>> entered{{rootStat.st_dev, rootStat.st_ino}};
    QString path = root;
    for (const QString& name : names) {
        if (name == u"." || name == u"..") {
            return {};
        }
        path = QDir(path).filePath(name);
        const std::optional<struct stat> st = lstatOf(path);
        if (!st || !S_ISDIR(st->st_mode) || entered.contains(std::pair{st->st_dev, st->st_ino})) {
            return {};
        }
        entered.append({st->st_dev, st->st_ino});
    }
    return path;
}

// The regular file `file` below the root, reached without links; empty otherwise.
QString realFile(const QString& root, const QString& file)
{
    const qsizetype slash = file.lastIndexOf(u'/');
    const QString folder = realFolder(root, slash < 0 ? QString() : file.left(slash));
    const QString name = file.mid(slash + 1);
    if (folder.isEmpty() || name.isEmpty() || name == u"." || name == u"..") {
        return {};
    }
    const QString path = QDir(folder).filePath(name);
    const std::optional<struct stat> st = lstatOf(path);
    return st && S_ISREG(st->st_mode) ? path : QString();
}

} // namespace

std::optional<QList<VolumeEntry>> FolderVolumeReader::list(const QString& folder)
{
    const QString path = realFolder(m_root, folder);
    if (path.isEmpty()) {
        return std::nullopt;
    }
    const QByteArray encoded = QFile::encodeName(path);
    DIR* dir = ::opendir(encoded.constData());
    if (dir == nullptr) {
        return std::nullopt;
    }
    QList<VolumeEntry> entries;
    while (const dirent* entry = ::readdir(dir)) {
        const QByteArray raw(entry->d_name);
        if (raw == "." || raw == "..") {
            continue;
        }
        const QString name = QFile::decodeName(raw);
        // What the entry itself is: a link stays a link, whatever it points at.
        const std::optional<struct stat> st = lstatOf(encoded + '/' + raw);
        if (!st) {
            continue; // gone while listed
        }
        const bool isFolder = S_ISDIR(st->st_mode);
        entries.append({name, isFolder, isFolder ? 0 : qint64(st->st_size), name.startsWith(u'.')});
    }
    ::closedir(dir);
    sortEntries(entries);
    return entries;
}

std::optional<QByteArray> FolderVolumeReader::tail(const QString& file, int count)
{
    QFile input(realFile(m_root, file));
    if (input.fileName().isEmpty() || !input.open(QIODevice::ReadOnly) ||
        !input.seek(std::max<qint64>(0, input.size() - count))) {
        return std::nullopt;
    }
    return input.read(count);
}

bool FolderVolumeReader::copy(const QString& file, QIODevice& out, const std::function<bool()>& cancelled)
{
    QFile input(realFile(m_root, file));
    if (input.fileName().isEmpty() || !input.open(QIODevice::ReadOnly)) {
        return false;
    }
    const qint64 size = input.size();
    qint64 done = 0;
    while (done < size) {
        if (cancelled && cancelled()) {
            return false;
        }
        const QByteArray chunk = input.read(std::min(kChunk, size - done));
        if (chunk.isEmpty() || out.write(chunk) != chunk.size()) {
            return false;
        }
        done += chunk.size();
    }
    return true;
}

} // namespace vinora
