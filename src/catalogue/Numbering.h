#pragma once

#include "catalogue/CatalogueKind.h"

#include <QString>
#include <optional>

namespace vinora {

class AppContext;
class Db;

// The smallest number from 1 up that no disc of the catalogue has: gaps are filled first.
int firstFreeNumber(const Db& db, const CatalogueKind& kind);

// The title of disc `number` as messages show it: the name, and " - " and the album for an
// audio disc with an album (with `albumAlways`, for every audio disc, as the add dialog's
// question has it); nothing when the number is not in the catalogue.
std::optional<QString> discTitle(const Db& db, const CatalogueKind& kind, int number,
                                 bool albumAlways = false);

// Shifts every number from `start` up by 1 to make room, and renames the covers named
// box/dvd_<n>.box from the count of rows down to `start` (that prefix whatever the
// catalogue, as the catalogue has always done). `start` is 0 afterwards, also on failure;
// a failure goes to the fault log as "vinoraModule, MoveNumbers()".
void MoveNumbers(AppContext& ctx, Category category, qint16& start);

// The two halves of MoveNumbers, for a caller that shifts and writes in one transaction
// of its own: the numbers on `db` (the count of rows comes back), and, once that
// transaction is committed, the covers.
int shiftNumbers(const Db& db, const CatalogueKind& kind, int start);
void shiftCovers(const AppContext& ctx, int start, int rowCount);

// Gives disc `from` the free number `to`, the cover box/dvd_<from>.box following. Here and
// in the shift, a cover that cannot be moved stays under its old name.
void moveNumber(AppContext& ctx, const CatalogueKind& kind, int from, int to);
// Exchanges the numbers of two discs through the number 0, covers box/dvd_ following.
void swapNumbers(AppContext& ctx, const CatalogueKind& kind, int a, int b);

} // namespace vinora
