#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace vinora {

class AppContext;

// The engine's own check of one database.
struct DatabaseCheck
{
    QString path;
    QStringList problems;              // empty when sound
    bool searchIndexOutOfStep = false; // a contents database whose search index misses rows
};

// The engine's integrity check of the three databases, and of the search index of the two
// contents databases against their rows. A database that cannot be opened is a problem.
QList<DatabaseCheck> checkDatabases(const AppContext& ctx);

// Refills the search index of the contents database at `path` from its rows.
void rebuildSearchIndexOf(const AppContext& ctx, const QString& path);

} // namespace vinora
