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
// The total length of the backup files that exist.
qint64 backupSetSize(const AppContext& ctx);

// Makes the backup set from the three databases with the engine's online backup (never a
// copy of a file that another connection may be writing), each into a new file beside its
// place; only when all three are made do they replace the old set. Runs under the exclusive
// database lock, so the three show one moment. AppError on failure (52, 53, 75, 61 from
// the file system), the old set as it was; err::DatabasesBusy while another process writes.
void createBackupSet(const AppContext& ctx);

// Puts the backup set in place of the three databases with the engine's online backup,
// under the exclusive database lock: the three together or none. Each database is first
// copied aside; should a later one fail, the earlier ones get their copies back. A database
// file that is damaged is not overwritten: it is kept beside as "<name>.damaged" (an older
// one of that name is replaced) and the backup is copied to a new file in its place.
// AppError when the set is incomplete (53), when the backup files are no databases, or on
// failure; err::DatabasesBusy while another process works on the databases.
void restoreBackupSet(const AppContext& ctx);

// Removes the three backup files; AppError (52, 53, 75) when one cannot be removed.
void deleteBackupSet(const AppContext& ctx);

} // namespace vinora
