#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

class QIODevice;

namespace vinora {

// No disc nests folders deeper: its paths are at most 255 characters long. A deeper folder
// is taken for a damaged one.
inline constexpr int kDeepestFolder = 255;

// A name a disc's entry can go by in a path: not empty, no "/" and no NUL. A damaged
// directory record can hold anything; such an entry is not listed.
inline bool usableEntryName(const QString& name)
{
    return !name.isEmpty() && !name.contains(u'/') && !name.contains(QChar(0));
}

struct VolumeEntry
{
    QString name;
    bool isFolder = false;
    qint64 size = 0;
    bool hidden = false;
};

// The folders and files of a data disc: from the folder where the drive is mounted, or
// for images and unmounted drives straight from the disc's ISO 9660 (Joliet, Rock Ridge)
// or UDF file system. Folders are named by paths relative to the root with "/" between
// names: "" is the root, "DOCS/OLD" a folder in it.
class VolumeReader
{
public:
    virtual ~VolumeReader() = default;

    // The entries of `folder`, sorted by name as the catalogue sorts (case-insensitive,
    // Russian order), or nothing when the folder cannot be read (a damaged disc).
    virtual std::optional<QList<VolumeEntry>> list(const QString& folder) = 0;
    // The last `count` bytes of a file (fewer for a shorter file), or nothing on failure.
    virtual std::optional<QByteArray> tail(const QString& file, int count) = 0;
    // Writes the bytes of a file to `out`, checking `cancelled` (when given) as it goes;
    // false when it is no file, cannot be read (a damaged disc), was cancelled, or `out`
    // takes no more.
    virtual bool copy(const QString& file, QIODevice& out, const std::function<bool()>& cancelled) = 0;
    // Where the reader reads from: a mount point, or the drive itself.
    virtual QString source() const = 0;
};

// A reader for the data disc in `drive`, or nothing when it holds no readable data volume
// (no disc, an audio disc, a damaged image).
std::unique_ptr<VolumeReader> openVolumeReader(const QString& drive);
// A reader over a folder standing for the disc's root (the mount point).
std::unique_ptr<VolumeReader> openFolderReader(const QString& root);

// Sorts entries by name as the catalogue sorts.
void sortEntries(QList<VolumeEntry>& entries);

} // namespace vinora
