#include "recognition/UdfVolumeReader.h"

#include "recognition/CdioMedium.h"
#include "recognition/ImageProbe.h"

#include <QFile>
#include <QFileInfo>
#include <QIODevice>
#include <QStringList>
#include <cdio/udf.h>
#include <functional>
#include <limits>

namespace vinora {
namespace {

constexpr int kBlock = UDF_BLOCKSIZE;
// A folder of more entries than this is taken for a damaged one.
constexpr int kMostEntries = 1000000;

QString nameOf(const udf_dirent_t* entry)
{
    const char* name = udf_get_filename(entry);
    return name ? QString::fromUtf8(name) : QString();
}

// Visits the entries of the folder `path` (names split by "/"); `visit` returns false to
// stop. The entry it gets is valid during the call only. False when the folder cannot be
// reached: a missing step, a folder deeper than a disc nests, or a folder that is one of
// the folders it lies in (a damaged disc's cycle).
bool forEachEntry(udf_t* udf, const QStringList& path, const std::function<bool(udf_dirent_t*)>& visit)
{
    if (path.size() > kDeepestFolder) {
        return false;
    }
    udf_dirent_t* folder = udf_get_root(udf, true, 0);
    if (folder == nullptr) {
        return false;
    }
    QList<quint32> entered{folder->i_loc};
    for (const QString& step : path) {
        udf_dirent_t* next = nullptr;
        int seen = 0;
        for (udf_dirent_t* entry = folder; udf_readdir(entry) != nullptr; ++seen) {
            if (seen >= kMostEntries) {
                udf_dirent_free(entry);
                return false;
            }
            if (udf_is_dir(entry) && !entry->b_parent && nameOf(entry) == step) {
                next = udf_opendir(entry);
                udf_dirent_free(entry);
                break;
            }
        }
        // udf_readdir frees the folder when it reaches its end.
        if (next == nullptr) {
            return false;
        }
        if (entered.contains(next->i_loc)) {
            udf_dirent_free(next);
            return false;
        }
        entered.append(next->i_loc);
        folder = next;
    }
    int seen = 0;
    for (udf_dirent_t* entry = folder; udf_readdir(entry) != nullptr; ++seen) {
        if (seen >= kMostEntries || (!entry->b_parent && !visit(entry))) {
            udf_dirent_free(entry);
            break;
        }
    }
    return true;
}

} // namespace

std::unique_ptr<VolumeReader> UdfVolumeReader::open(const QString& path)
{
    const bool survived = imageSurvivesProbe(path, ProbeKind::UdfVolume, [path] {
        if (const auto volume = openUnprobed(path)) {
            walkAsScan(*volume);
        }
    });
    if (!survived) {
        return nullptr;
    }
    return openUnprobed(path);
}

std::unique_ptr<UdfVolumeReader> UdfVolumeReader::openUnprobed(const QString& path)
{
    silenceCdioLog();
    udf_t* udf = udf_open(QFile::encodeName(path).constData());
    if (udf == nullptr) {
        return nullptr;
    }
    udf_dirent_t* root = udf_get_root(udf, true, 0);
    if (root == nullptr) {
        udf_close(udf);
        return nullptr;
    }
    udf_dirent_free(root);
    return std::unique_ptr<UdfVolumeReader>(new UdfVolumeReader(udf, path));
}

UdfVolumeReader::~UdfVolumeReader()
{
    udf_close(m_udf);
}

std::optional<QList<VolumeEntry>> UdfVolumeReader::list(const QString& folder)
{
    QList<VolumeEntry> entries;
    const QStringList path = folder.split(u'/', Qt::SkipEmptyParts);
    const bool reached = forEachEntry(m_udf, path, [&entries](udf_dirent_t* entry) {
        const bool hidden = entry->fid != nullptr && (entry->fid->file_characteristics & UDF_FILE_HIDDEN);
        const bool isDir = udf_is_dir(entry);
        const quint64 length =
            std::min<quint64>(udf_get_file_length(entry), std::numeric_limits<qint64>::max());
        if (const QString name = nameOf(entry); usableEntryName(name)) {
            entries.append({name, isDir, isDir ? 0 : qint64(length), hidden});
        }
        return true;
    });
    if (!reached) {
        return std::nullopt;
    }
    sortEntries(entries);
    return entries;
}

bool UdfVolumeReader::readFile(const QString& file, const std::function<bool(const QByteArray&)>& block)
{
    QStringList path = file.split(u'/', Qt::SkipEmptyParts);
    if (path.isEmpty()) {
        return false;
    }
    const QString name = path.takeLast();
    const qint64 imageSize = QFileInfo(m_path).size();
    bool found = false;
    bool read = false;
    forEachEntry(m_udf, path, [&](udf_dirent_t* entry) {
        if (udf_is_dir(entry) || nameOf(entry) != name) {
            return true;
        }
        found = true;
        // libudf reads a file from its start, block by block.
        const quint64 length = udf_get_file_length(entry);
        if (length > quint64(imageSize)) {
            return false; // a damaged entry: no file is larger than the disc
        }
        QByteArray buffer(kBlock, '\0');
        for (quint64 done = 0; done < length; done += kBlock) {
            if (udf_read_block(entry, buffer.data(), 1) <= 0) {
                return false;
            }
            const quint64 used = std::min<quint64>(kBlock, length - done);
            if (!block(used == quint64(kBlock) ? buffer : buffer.left(qsizetype(used)))) {
                return false;
            }
        }
        read = true;
        return false;
    });
    return found && read;
}

std::optional<QByteArray> UdfVolumeReader::tail(const QString& file, int count)
{
    // Only the blocks that hold the file's end are kept.
    QByteArray window;
    const bool read = readFile(file, [&window, count](const QByteArray& block) {
        window.append(block);
        if (window.size() > 2 * kBlock + count) {
            window.remove(0, kBlock);
        }
        return true;
    });
    return read ? std::optional<QByteArray>(window.right(count)) : std::nullopt;
}

bool UdfVolumeReader::copy(const QString& file, QIODevice& out, const std::function<bool()>& cancelled)
{
    return readFile(file, [&out, &cancelled](const QByteArray& block) {
        return !(cancelled && cancelled()) && out.write(block) == block.size();
    });
}

} // namespace vinora
