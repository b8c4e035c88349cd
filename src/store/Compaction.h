#pragma once

#include <QString>

namespace vinora {

class AppContext;

// Rewrites the three databases of the context to reclaim space. All three are written to
// their temporaries in the application folder (~vinora.db, ~vinora_files.db,
// ~vinora_tracks.db) before any database is touched; each then replaces its database in
// one step, so a failure at any point leaves every database whole. No temporary remains.
// AppError on failure.
void compactDatabases(const AppContext& ctx);

// The total size of the three databases in bytes.
qint64 databasesSize(const AppContext& ctx);

} // namespace vinora
