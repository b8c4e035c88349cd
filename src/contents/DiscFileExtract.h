#pragma once

#include <QString>
#include <functional>

namespace vinora {

class VolumeReader;

// A file of a disc copied out to a folder of the computer, so that the desktop can open
// it when the disc is not mounted (a disc image, an unmounted drive).
struct ExtractedFile
{
    enum class Status {
        Done,
        NotFound,    // the disc has no such file (the list is older than the disc)
        TooLarge,    // larger than the room left in the folder
        Unreadable,  // the disc or the file cannot be read
        CannotWrite, // the copy cannot be written
        Cancelled,
    };
    Status status = Status::Unreadable;
    QString path; // of the copy, when done
    qint64 size = 0;
};

// Copies `file` ("DOCS/OLD/A.TXT", or a name in the root) of `volume` into `folder`, under
// the name the disc gives it, when it fits in `room` bytes. A name stored in lower case
// finds the file whatever its case on the disc. A copy that fails leaves nothing behind.
ExtractedFile extractDiscFile(VolumeReader& volume, const QString& file, const QString& folder, qint64 room,
                              const std::function<bool()>& cancelled = {});

// The same for the data disc in `drive`, read where it lies: Unreadable when it holds none.
ExtractedFile extractDiscFile(const QString& drive, const QString& file, const QString& folder, qint64 room,
                              const std::function<bool()>& cancelled = {});

} // namespace vinora
