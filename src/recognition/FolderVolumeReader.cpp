#include "recognition/FolderVolumeReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace vinora {

std::optional<QList<VolumeEntry>> FolderVolumeReader::list(const QString& folder)
{
    const QDir dir(QDir(m_root).filePath(folder));
    if (!dir.exists() || !dir.isReadable()) {
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
