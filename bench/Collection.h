#pragma once

// The collection every benchmark measures on: a user's large catalogue in an application
// folder of its own, the same on every run. At full size it holds 20,000 rows across the
// three catalogues (sets of one to six discs, Cyrillic and Latin titles, styles, covers for a
// tenth), 2,000,000 file rows over the computer discs (one disc with 100,000 files), about
// 200,000 tracks over the audio discs, 10,000 loans to 2,000 borrowers and a dozen query
// shortcuts. Smaller sizes scale every count; they show how the costs grow.
#include "frame/AppContext.h"

#include <QString>

namespace vinora::bench {

struct CollectionSize
{
    double fraction = 1.0; // of the full collection
    int audioRows = 15000;
    int computerRows = 1500;
    int dvdRows = 3500;
    int fileRows = 2000000;       // over every disc of the computer catalogue
    int largestListRows = 100000; // the largest disc's share of them
    int borrowers = 2000;
    int loans = 10000;
    int shortcuts = 12;
};

CollectionSize collectionSize(double fraction);

struct Collection
{
    QString folder; // the application folder: three databases, box/, query.ini
    CollectionSize size;
    int largestListNumber = 0; // the computer disc (set number) holding the largest list
    QString largestListId;     // and the id of that list
};

// The collection at the size VINORA_BENCH_SCALE asks for (0.1, 0.5 or 1, the default), made
// the first time (a few minutes at full size) under the benchmarks' data folder and reused.
Collection benchCollection();

// The benchmarks' data folder: VINORA_BENCH_DATA, else bench/data in the build folder.
QString benchDataFolder();

// A fresh copy of the collection (databases, covers, ini files) in `target`, which is
// emptied first; the copy is what a benchmark that writes works on.
void copyCollection(const Collection& collection, const QString& target);

// The id of the first audio disc's track list.
QString firstTrackListId();

// One line on what the collection holds, counted from its databases.
void describeCollection(const Collection& collection);

// The collection opened as an application folder, its contents told first: the collection
// itself for a benchmark that only reads, or a fresh copy of it (named `copy`, under the data
// folder, removed at the end) for one that writes.
struct CollectionApp
{
    explicit CollectionApp(const QString& copy = {});
    ~CollectionApp();
    CollectionApp(const CollectionApp&) = delete;
    CollectionApp& operator=(const CollectionApp&) = delete;

    const Collection collection;
    const QString folder;
    UnattendedPrompter prompts;
    SystemClock clock;
    AppContext ctx{folder, prompts, clock};
};

} // namespace vinora::bench
