#pragma once

#include "store/Category.h"

#include <QString>
#include <optional>

namespace vinora {

class Db;

// The catalogue row a disc in the drive is bound to.
struct BoundDisc
{
    int number = 0;
    int discs = 1;
    int slot = 1;  // the disc's place in its set: the last slot holding its identifier
    QString title; // Название, and " - " Альбом for an audio disc with an album
};

// The first row (in key order) of the category's table with `id` in one of its bindings
// ДискID1_d .. ДискID6_d, or nothing.
std::optional<BoundDisc> findBoundDisc(const Db& db, Category category, const QString& id);

// Clears `id` from every binding of the first row (in key order) that holds it; the other
// rows keep theirs. False when no row holds it.
bool unbindDisc(const Db& db, Category category, const QString& id);

// The number of the disc that has `id` as the binding of its first disc (only slot 1 is
// looked at: a second disc of a set is not found here), or nothing.
std::optional<int> CheckDiskShare(const Db& db, Category category, const QString& id);
// The binding of disc `slot` of the first row of `number` (empty for none).
QString bindingAt(const Db& db, Category category, int number, int slot);
// Binds disc `slot` of the first row of `number` to `id`.
void bindDisc(const Db& db, Category category, int number, int slot, const QString& id);

// "Диск № 12 (CD2):\nTitle" or "Диск № 12:\nTitle" for a single disc.
QString boundDiscText(const BoundDisc& disc);
// The sign of a disc that no row knows.
QString unknownDiscText();

// The category of a kind word ("AudioCD", "PcCD", "DVD").
std::optional<Category> categoryOfKind(const QString& kind);

} // namespace vinora
