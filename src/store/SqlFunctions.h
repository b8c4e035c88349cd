#pragma once

#include <QSqlDatabase>

namespace vinora {

// Installs the text rules of the catalogue on one connection: NOCASE compares and orders
// text without regard to case in Russian alphabetical order (every text column is declared
// with it), LIKE takes "*" and "?" (see jetLike), lower() and upper() know Cyrillic.
// The files stay readable by the stock sqlite3 tool, which has its own NOCASE and LIKE.
void installSqlFunctions(const QSqlDatabase& db);

} // namespace vinora
