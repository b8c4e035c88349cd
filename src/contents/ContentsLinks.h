#pragma once

#include "store/ContentsLists.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QVariant>

namespace vinora {

class AppContext;

// How a catalogue row points at its per-disc lists: ДискID1..ДискID6 of Компьютер (file
// lists) or Аудио (track lists) name the lists of the discs of a set.

// True when a catalogue row has `id` among ДискID1..ДискID6.
bool listHasOwner(const AppContext& ctx, ContentsKind kind, const QString& id);

// Sets `fields` (name, value; an invalid value is Null) on the first row of disc `number`;
// slot `slot` of ctx.DiscIDSlots follows a ДискID<slot> among them. A slot outside 1..6
// writes nothing.
void writeDiscSlot(AppContext& ctx, ContentsKind kind, int number, int slot,
                   const QList<QPair<QString, QVariant>>& fields);

enum class ListCreation { Created, Exists, Owned };

// Makes the empty list `id`. When a list of that id is there: Exists without `ask`; with
// `ask`, a list that no catalogue row owns is an orphan and is made again (Created), one that
// a row owns gives Owned and stays as it is.
ListCreation createList(const AppContext& ctx, ContentsKind kind, const QString& id, bool ask);

// Drops list `id` from its contents database when it is there.
void dropListIfAny(const AppContext& ctx, ContentsKind kind, const QString& id);

} // namespace vinora
