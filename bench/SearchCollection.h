#pragma once

// A large collection of computer discs for the search benchmark: 2,000 discs of 2,500 rows
// each (5,000,000 rows: folders and files with Cyrillic and Latin names, a comment on some),
// made the same way on every run from a fixed starting state, plus the text dump of the same
// file names that the reference tool reads.
#include "frame/AppContext.h"

#include <QString>

namespace vinora::bench {

struct CollectionShape
{
    int discs = 2000;
    int rowsPerDisc = 2500;
};

// Fills the three databases of `ctx` (made by the caller) and writes `dump`: the name of
// every file row, one per line, in the order of the rows.
void generateSearchCollection(const AppContext& ctx, const CollectionShape& shape, const QString& dump);

} // namespace vinora::bench
