#pragma once

#include <QString>

namespace vinora {

// Copies the whole database `sourcePath` into the database `targetPath` with the engine's
// online backup: the target is written under its own locks, page by page, in one step
// that a connection of another process sees whole or not at all, and a connection that
// has the target open goes on working on the new content. The target is created when
// missing. Never replaces a file by rename. AppError on failure, the target unchanged.
void copyDatabase(const QString& sourcePath, const QString& targetPath);

} // namespace vinora
