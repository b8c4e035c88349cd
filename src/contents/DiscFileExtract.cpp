#include "contents/DiscFileExtract.h"

#include "recognition/VolumeReader.h"

#include <QDir>
#include <QSaveFile>

namespace vinora {
namespace {

// The disc's entry for `name` in `entries`: the one of that very name, else the first that
// differs only in case.
const VolumeEntry* entryNamed(const QList<VolumeEntry>& entries, const QString& name)
{
    const VolumeEntry* caseless = nullptr;
    for (const VolumeEntry& entry : entries) {
        if (entry.name == name) {
            return &entry;
        }
        if (caseless == nullptr && entry.name.compare(name, Qt::CaseInsensitive) == 0) {
            caseless = &entry;
        }
    }
    return caseless;
}

} // namespace

ExtractedFile extractDiscFile(VolumeReader& volume, const QString& file, const QString& folder, qint64 room,
                              const std::function<bool()>& cancelled)
{
    using Status = ExtractedFile::Status;
    ExtractedFile result;
    const qsizetype slash = file.lastIndexOf(u'/');
    const QString parent = slash < 0 ? QString() : file.left(slash);
    const std::optional<QList<VolumeEntry>> entries = volume.list(parent);
    if (!entries) {
        result.status = volume.list(QString()) ? Status::NotFound : Status::Unreadable;
        return result;
    }
    const VolumeEntry* entry = entryNamed(*entries, file.mid(slash + 1));
    if (entry == nullptr || entry->isFolder) {
        result.status = Status::NotFound;
        return result;
    }
    result.size = entry->size;
    if (entry->size > room) {
        result.status = Status::TooLarge;
        return result;
    }
    const QString onDisc = parent.isEmpty() ? entry->name : parent + u'/' + entry->name;
    QSaveFile copy(QDir(folder).filePath(entry->name));
    if (!copy.open(QIODevice::WriteOnly)) {
        result.status = Status::CannotWrite;
        return result;
    }
    if (!volume.copy(onDisc, copy, cancelled)) {
        const bool writeFailed = copy.error() != QFileDevice::NoError;
        copy.cancelWriting();
        result.status = cancelled && cancelled() ? Status::Cancelled
                        : writeFailed            ? Status::CannotWrite
                                                 : Status::Unreadable;
        return result;
    }
    if (!copy.commit()) {
        result.status = Status::CannotWrite;
        return result;
    }
    result.status = Status::Done;
    result.path = copy.fileName();
    return result;
}

ExtractedFile extractDiscFile(const QString& drive, const QString& file, const QString& folder, qint64 room,
                              const std::function<bool()>& cancelled)
{
    const std::unique_ptr<VolumeReader> volume = openVolumeReader(drive);
    if (!volume) {
        return {ExtractedFile::Status::Unreadable, {}, 0};
    }
    return extractDiscFile(*volume, file, folder, room, cancelled);
}

} // namespace vinora
