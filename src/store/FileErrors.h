#pragma once

#include "frame/AppError.h"

#include <QList>
#include <QString>
#include <utility>

namespace vinora {

// The numbers the handlers test for what the file system said of a file or folder on the
// way: 52 a device that is not there or not ready, 53 access denied, 75 a folder or file
// system that takes no writes, 61 a full disk.
AppError fileSystemError(int errnoValue, const QString& path);

// Throws the error of a folder that cannot take new files: 52 when it is not there, 75
// when it refuses them.
void checkWritableFolder(const QString& folder);

// Moves `source` over `target` in one step (same folder); the file system's refusal comes
// out as fileSystemError.
void moveOver(const QString& source, const QString& target);

// Puts each made file (first) in the place of its target (second), all or none: a target
// that is not a plain file refuses the whole (53); the targets that stand are moved aside,
// the made files moved in, and the old ones removed; a failure on the way moves everything
// back and comes out as fileSystemError.
void replaceTogether(const QList<std::pair<QString, QString>>& moves);

// Removes the file when it is there; a refusal comes out as fileSystemError.
void removeFile(const QString& path);

// The refusal of maintenance while another process works on the databases.
AppError databasesBusyError();

} // namespace vinora
