#pragma once

#include <QString>
#include <optional>

namespace vinora {

class AppContext;

// Moves the local databases to a folder the user chooses, at once: a folder holding
// vinora.db is taken as it is; an existing folder without one gets new databases when the
// user agrees. A read-only folder is refused with its message and the paths stay where
// they were. Gives the new folder, written to PathLocalDB, or nothing when the paths are
// unchanged.
std::optional<QString> changeLocalDatabaseFolder(AppContext& ctx, const QString& startFolder);

} // namespace vinora
