#include "contents/FileListScan.h"

#include "contents/MP3TagEditor.h"
#include "recognition/VolumeReader.h"

#include <QLocale>
#include <cfenv>
#include <cmath>

namespace vinora {
namespace {

constexpr int kTextField = 255;

// "DOCS/OLD" as the list writes it: "\DOCS\OLD\"; the root is "\".
QString listPath(const QString& folder)
{
    if (folder.isEmpty()) {
        return QStringLiteral("\\");
    }
    QString path = folder;
    path.replace(u'/', u'\\');
    return QString(u'\\' + path + u'\\').left(kTextField);
}

} // namespace

QString sizeText(qint64 bytes)
{
    std::fesetround(FE_TONEAREST); // halves go to the even neighbour
    const double kilobytes = std::nearbyint(static_cast<double>(bytes) / 1024.0 * 10.0) / 10.0;
    return QLocale().toString(kilobytes, 'f', 1);
}

FileListScanner::FileListScanner(VolumeReader& volume, ScanOptions options, QStringList filterEntries)
    : m_volume(volume), m_options(options), m_filter(std::move(filterEntries))
{
    if (!m_options.scanDir) {
        m_options.scanDirOnly = false; // the box is off while folders are not scanned
    }
    if (m_options.scanDirOnly) {
        m_options.filter.reset();
    }
}

bool FileListScanner::run()
{
    return walk(QString(), 0);
}

bool FileListScanner::walk(const QString& folder, int depth)
{
    if (cancelled && cancelled()) {
        return false;
    }
    // A folder deeper than a disc can nest is a damaged disc's, as is one that cannot be read.
    const std::optional<QList<VolumeEntry>> entries =
        depth <= kDeepestFolder ? m_volume.list(folder) : std::nullopt;
    if (!entries) {
        if (onReadError) {
            onReadError();
        }
        return true; // this level is lost; the parent goes on
    }
    QList<VolumeEntry> folders;
    QList<VolumeEntry> files;
    for (const VolumeEntry& entry : *entries) {
        if (entry.hidden && !m_options.hidden) {
            continue;
        }
        (entry.isFolder ? folders : files).append(entry);
    }
    for (qsizetype i = folders.size() - 1; i >= 0; --i) {
        if (!walk(folder.isEmpty() ? folders[i].name : folder + u'/' + folders[i].name, depth + 1)) {
            return false;
        }
    }
    if (onFolder) {
        onFolder(listPath(folder).toUpper());
    }
    const bool root = folder.isEmpty();
    const QString path = listPath(folder);
    QList<FileRow> rows;
    rows.reserve(files.size() + 1);
    if (m_options.scanDir || root) {
        rows.append({path, path, QStringLiteral("0"), {}});
    }
    const bool filesWanted = root ? m_options.filesInCore : m_options.scanDir;
    if (filesWanted && !m_options.scanDirOnly) {
        for (int index = 0; index < files.size(); ++index) {
            const VolumeEntry& file = files[index];
            if (onFile) {
                onFile(file.name.toLower(), index + 1, static_cast<int>(files.size()));
            }
            if (m_options.filter && skipsFile(m_filter, *m_options.filter, file.name)) {
                continue;
            }
            FileRow row{(m_options.lowerCase ? file.name.toLower() : file.name).left(kTextField),
                        path,
                        sizeText(file.size),
                        {}};
            if (m_options.mp3 && file.name.contains(QStringLiteral(".mp3"), Qt::CaseInsensitive)) {
                const QString filePath = folder.isEmpty() ? file.name : folder + u'/' + file.name;
                MP3TagEditor tag;
                tag.read(file.size, m_volume.tail(filePath, 128).value_or(QByteArray()));
                row.comment = mp3Comment(tag);
            }
            rows.append(std::move(row));
        }
    }
    if (onRows && !rows.isEmpty()) {
        onRows(rows);
    }
    return true;
}

} // namespace vinora
