#pragma once

#include <QString>

namespace vinora {

class AppContext;

// Builds the databases from nothing at the paths of the context:
//   0 (and any value other than 1 and 2): vinora.db, then vinora_files.db and
//     vinora_tracks.db as well, replacing whatever stands there;
//   1: vinora_files.db only;  2: vinora_tracks.db only.
// Returns true only when the folder turned out to be read-only (error 3051), after telling
// the user. A missing folder (3044) offers to go back to the application folder. Anything
// else goes to the fault log. A database is built beside its place and moved in when
// complete, so a failure never leaves a half-made file behind.
bool Reanimator(AppContext& ctx, int kind);

// The building blocks, without the handling of errors (AppError comes out).
void createMainDatabase(const QString& path);
void createFilesDatabase(const QString& path);
void createTracksDatabase(const QString& path);

} // namespace vinora
