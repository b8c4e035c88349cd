#include "recognition/FolderVolumeReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>

namespace vinora {
namespace {

struct Identity
{
    dev_t device;
    ino_t inode;
    bool operator==(const Identity&) const = default;
};

std::optional<Identity> identityOf(const QString& path)
{
    struct stat st = {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0) {
        return std::nullopt;
    }
    return Identity{st.st_dev, st.st_ino};
}

// True when a step of `folder` leads back into a folder it lies in (a symbolic link to an
// ancestor), or when it nests deeper than a disc can.
bool loopsBack(const QString& root, const QString& folder)
{
    const QStringList names = folder.split(u'/', Qt::SkipEmptyParts);
    if (names.size() > kDeepestFolder) {
        return true;
    }
    QList<Identity> entered;
    QString path = root;
    for (qsizetype i = 0; i <= names.size(); ++i) {
        if (i > 0) {
            path = QDir(path).filePath(names[i - 1]);
        }
        const std::optional<Identity> identity = identityOf(path);
        if (!identity || entered.contains(*identity)) {
            return true;
        }
        entered.append(*identity);
    }
    return false;
}

} // namespace

std::optional<QList<VolumeEntry>> FolderVolumeReader::list(const QString& folder)
{
    const QDir dir(QDir(m_root).filePath(folder));
    if (!dir.exists() || !dir.isReadable() || loopsBack(m_root, folder)) {
        return std::nullopt;
    }
    QList<VolumeEntry> entries;
    const QFileInfoList infos =
        dir.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo& info : infos) {
        entries.append({info.fileName(), info.isDir(), info.isDir() ? 0 : info.size(),
                        info.fileName().startsWith(u'.')});
    }
    sortEntries(entries);
    return entries;
}

std::optional<QByteArray> FolderVolumeReader::tail(const QString& file, int count)
{
    QFile input(QDir(m_root).filePath(file));
    if (!input.open(QIODevice::ReadOnly) || !input.seek(std::max<qint64>(0, input.size() - count))) {
        return std::nullopt;
    }
    return input.read(count);
}

} // namespace vinora
