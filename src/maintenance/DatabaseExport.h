#pragma once

#include <QList>
#include <QString>

namespace vinora {

class AppContext;
struct TableDef;

// The two ways of taking the data elsewhere: the whole set of three databases into a folder
// ("Сохранить как...") and one database of the catalogues alone ("DB-файл...").

// The tables of a database export, in the order they are made: the catalogues with their
// dictionaries and the dates of the last changes; no loans, no borrowers, no disc identities.
const QList<TableDef>& exportTables();

// Writes the database export of the main database `mainPath` to `path`: made beside it, with
// every row and key of the tables above, and put in place of whatever stood there only when
// complete. AppError on failure (52, 53, 75, 61 from the file system), `path` as it was.
void SaveDB(const QString& mainPath, const QString& path);

// Copies the three databases into `folder` under their own names, with the engine's online
// backup, under the exclusive database lock, so that the three show one moment. Each is made
// beside its place and replaces what stood there only when all three are made. AppError on
// failure (52, 53, 75, 61), the folder as it was; err::DatabasesBusy while another process writes.
void saveDatabaseSet(const AppContext& ctx, const QString& folder);

// The names of the set that stand in `folder` already.
QStringList databaseSetIn(const QString& folder);

// True when `a` and `b` name the same folder or file.
bool samePlace(const QString& a, const QString& b);

} // namespace vinora
