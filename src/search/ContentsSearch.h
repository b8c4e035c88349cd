#pragma once

#include <QList>
#include <QString>
#include <QVariantList>
#include <atomic>
#include <functional>

namespace vinora {

class AppContext;

// What to look for in the contents of the discs: the file lists of the computer discs or
// the track lists of the audio discs.
//
// The text compares without regard to case, Cyrillic and Latin alike. In it "*" stands for
// any run of characters and "?" for any one character, in the "contains" search and in the
// whole-field search alike; every other character stands for itself ("%", "_", "#", "[",
// "]", "!", "-", quotes and apostrophes included). A "*" or "?" cannot be searched for as
// such: "?" in its place finds it. An empty text (or one of stars only) in the "contains"
// search finds every row whose field has a value; rows without a comment are never found
// by a comment search.
struct SearchRequest
{
    bool tracks = false;   // track titles of the audio discs instead of the computer discs' files
    bool folders = false;  // files: folder rows by their path instead of file rows by their name
    bool whole = false;    // the whole field equals the text instead of containing it
    bool comments = false; // files: the comment field instead (of file or folder rows, as above)
    QString text;
};

// One found row: the catalogue number of its disc, the disc's place in its set (1..6), the
// file's name, the folder's path or the track's title, and the row's path ("\" the root;
// empty for tracks).
struct SearchHit
{
    int number = 0;
    int disc = 1;
    QString name;
    QString path;

    bool operator==(const SearchHit&) const = default;
};

// The two databases one search reads.
struct SearchDatabases
{
    QString catalogue; // the main database
    QString contents;  // the files or the tracks database
};

SearchDatabases searchDatabases(const AppContext& ctx, const SearchRequest& request);

// The statement of a search, with its values to bind in order. The contents database is
// the connection's own; the discs of the catalogue stand in the temporary table
// search_discs (id, number, place). `indexed`: the contents database has its search index,
// which then narrows the rows when the text allows it.
struct SearchQuery
{
    QString sql;
    QVariantList values;
    // The rows come in the order they were stored, each with the order of its disc first;
    // otherwise in the order of the discs.
    bool inStorageOrder = false;
};

inline const QString kCatalogueSchema = QStringLiteral("catalogue");

SearchQuery buildSearchQuery(const SearchRequest& request, bool indexed);

// The catalogue's LIKE pattern of a search text: "#" and "[" are put in brackets so they
// stand for themselves, "*" and "?" stay wildcards. `whole` leaves out the stars around it.
QString searchPattern(const QString& text, bool whole);

struct SearchOutcome
{
    int found = 0;        // hits delivered
    bool stopped = false; // the stop flag ended the search before its end
};

using SearchSink = std::function<void(const QList<SearchHit>&)>;

inline constexpr int kSearchBatch = 200;

// Runs the search over every disc of the catalogue (computer or audio), by catalogue row and
// then by the disc's place in its set, each disc's rows in their stored order. A disc whose
// id names no list has no hits. Hits are handed to `deliver` in batches of up to
// `batchSize`. Setting `*stop` (from any thread) ends the search at the next batch or
// sooner, inside the engine's work; what was delivered stays delivered.
// Errors of the databases come out as AppError (3024 missing file, 3343 not a database,
// 3078 a table missing ...).
SearchOutcome searchContents(const SearchDatabases& databases, const SearchRequest& request,
                             const SearchSink& deliver, const std::atomic_bool* stop = nullptr,
                             int batchSize = kSearchBatch);

} // namespace vinora
