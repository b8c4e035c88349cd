#pragma once

#include "store/ContentsLists.h"

#include <QString>
#include <QVariantList>

namespace vinora {

class Db;

// The search index of a contents database: for each searched field of the rows table a
// full-text table of its character trigrams (case folded), so that a search for a piece of
// a name reads the few rows holding all its trigrams instead of every row. Triggers on the
// rows table keep it in step with every write (inserts, deletes — those of a dropped list
// included —, changed names and comments), whoever writes the file.
//
// The index only narrows: a search still compares every row it gives with its own rules.

// The index table of one searched field ("ФайлыПоискИмя").
QString searchIndexTable(const ContentsDescriptor& descriptor, const QString& field);

// Makes the index tables and their triggers and fills them from the rows.
void createSearchIndex(const Db& db, ContentsKind kind);
bool hasSearchIndex(const Db& db, ContentsKind kind);
// Refills the index from the rows (after repairs, or when rowids may have moved).
void rebuildSearchIndex(const Db& db, ContentsKind kind);

// Runs `insert`, a statement that only adds rows to the rows table of `kind` (no REPLACE),
// and indexes the new rows after it in one statement per index table instead of by the
// triggers row by row, which costs twice as much for a list of many rows. Within the
// caller's transaction, so the rows and their entries are committed together; outside one,
// where the new rows cannot be told by their numbers, or where other triggers watch the
// table, the triggers do the work.
void insertIndexedRows(const Db& db, ContentsKind kind, const QString& insert, const QVariantList& values);

// Reclaims the free space of a contents database (VACUUM). The engine may renumber the
// rows of a table as it rewrites it; the index, which finds rows by number, is then refilled.
void vacuumContents(const Db& db, ContentsKind kind);

// Gives a contents database made before the index its index. A file that cannot be written
// is left as it is: its searches read every row. AppError for anything else.
void addMissingSearchIndex(const QString& path, ContentsKind kind);

// The index query that every row matching the search text must satisfy: the trigrams of
// its literal runs (the pieces between the wildcards "*" and "?"), joined by AND. Empty when
// the text has no trigram the index can answer for (runs shorter than three characters,
// or characters whose case folding the index may not share with the comparison).
QString trigramQuery(const QString& text);

} // namespace vinora
