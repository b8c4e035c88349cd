#pragma once

#include "frame/AppError.h"
#include "store/Category.h"

#include <QString>
#include <array>
#include <functional>

namespace vinora {

class AppContext;

// The merge of the catalogues of another copy of the databases into ours: whole disc rows
// get numbers behind our last one, dictionary values are matched by their text, and the
// track and file lists of the discs come along. The other copy is only ever read.

// What the user chose.
struct ImportChoice
{
    bool audio = false;
    bool computer = false;
    bool dvd = false;
    bool tracks = false; // the track lists of the audio discs (only with `audio`)
    bool files = false;  // the file lists of the computer discs (only with `computer`)
    bool skipDoubles = false;

    bool catalogue(Category category) const;
    bool any() const { return audio || computer || dvd; }
};

// The databases of the other copy. A list database not asked for is empty; so are both
// when the folder holds a database export, which carries no lists.
struct ImportSources
{
    QString main;
    QString files;
    QString tracks;
    bool exported = false; // `main` is a single-file export (no disc ids, no lists)
};

// The databases in `folder`: vinora.db and, for the lists asked for, vinora_files.db and
// vinora_tracks.db. A folder whose name ends with a separator (the root) is joined as it
// is. A folder without vinora.db that holds exactly one database file takes that file when
// it is a database export.
ImportSources importSources(const QString& folder, const ImportChoice& choice);

// The message for the first source file missing, in the order they are checked, or for a
// source that is our own main database; empty when the sources can be imported.
QString sourceCheckText(const AppContext& ctx, const ImportSources& sources, const ImportChoice& choice);

struct ImportCounts
{
    std::array<int, 3> imported{};
    std::array<int, 3> skipped{};
    int tracksCopied = 0;
    int tracksFailed = 0;
    int filesCopied = 0;
    int filesFailed = 0;

    int& importedOf(Category category) { return imported[static_cast<std::size_t>(category)]; }
    int& skippedOf(Category category) { return skipped[static_cast<std::size_t>(category)]; }
};

// Thrown when the import stops on an error: the error and what had come in before it.
struct ImportFailure
{
    AppError error;
    ImportCounts counts;
};

// Told the stage at hand ("Импортирование Аудио дисков..."); called on the importing thread.
using ImportStage = std::function<void(const QString& text)>;

// Runs the merge into the databases of `ctx`. Each disc comes in whole, with its row, its
// new dictionary values and its lists, or not at all; the discs are committed together at
// most every quarter of a second, so that a failure leaves whole discs only and costs at
// most the last moment's. ImportFailure on an error, with the counts of what came in.
// The caller holds the databases' writer lock.
ImportCounts importCatalogues(const AppContext& ctx, const ImportSources& sources, const ImportChoice& choice,
                              const ImportStage& stage);

// The closing message of a finished import.
QString importSummary(const ImportChoice& choice, const ImportCounts& counts);
// The message of an import that stopped on `error`, with what came in before it.
QString importFailureText(const ImportChoice& choice, const ImportFailure& failure);

} // namespace vinora
