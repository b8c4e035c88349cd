#pragma once

#include <QString>

namespace vinora {

class AppContext;

// Rewrites the three databases of the context in place to reclaim space (the engine's
// VACUUM, under its own locks: a connection of another process waits, and no file is
// ever replaced under it). Runs only when no other process is writing to the databases;
// returns false, touching nothing, when one is. AppError on failure; a database that
// failed half-way is left as it was.
bool compactDatabases(const AppContext& ctx);

// The total size of the three databases in bytes.
qint64 databasesSize(const AppContext& ctx);

} // namespace vinora
