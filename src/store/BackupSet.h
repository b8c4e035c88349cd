#pragma once

#include <QString>
#include <array>

namespace vinora {

class AppContext;

// The one backup set: backup_of_vinora.db, backup_of_vinora_files.db and
// backup_of_vinora_tracks.db in the application folder, for the three databases in order.
std::array<QString, 3> backupSetPaths(const AppContext& ctx);
// A set is complete only when all three files exist.
bool backupSetComplete(const AppContext& ctx);

// Puts the backup set in place of the three databases with the engine's online backup,
// under the exclusive database lock. A database file that is damaged is not overwritten:
// it is kept beside as "<name>.damaged" (an older one of that name is replaced) and the
// backup is copied to a new file in its place. AppError when the set is incomplete or
// another process is working on the databases (err::CannotOpenFile).
void restoreBackupSet(const AppContext& ctx);

} // namespace vinora
