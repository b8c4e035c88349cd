#pragma once

#include <QString>
#include <optional>

namespace vinora {

class AppContext;

// A database of the local set that cannot serve: the file and what is wrong with it.
struct DatabaseFault
{
    QString path;
    QString reason;
};

// The first of the three databases that is damaged, is not a database at all or is a
// database of another program (lacks our tables), or nothing when all three can serve.
// Cheap enough for every start: the header and the schema are read, not every page.
// A file that cannot be written is not a fault here; the dashboard tells that case.
std::optional<DatabaseFault> firstDamagedDatabase(const AppContext& ctx);

} // namespace vinora
