#pragma once

#include <QSqlDatabase>

struct sqlite3;

namespace vinora {

// Installs the text rules of the catalogue on one connection: NOCASE compares and orders
// text without regard to case in Russian alphabetical order (every text column is declared
// with it), LIKE takes "*" and "?" (see jetLike), lower() and upper() know Cyrillic.
// The files stay readable by the stock sqlite3 tool, which has its own NOCASE and LIKE.
void installSqlFunctions(const QSqlDatabase& db);

// The engine's own handle of an open connection, for the calls Qt does not offer.
sqlite3* sqliteHandle(const QSqlDatabase& db);

} // namespace vinora
