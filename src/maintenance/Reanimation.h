#pragma once

#include "store/ContentsLists.h"

#include <QString>
#include <QStringList>

namespace vinora {

class AppContext;
class Db;

// The repair of the links between the catalogue rows and their lists. The kind is named by
// a number: 1 the computer discs and their file lists, 2 the audio discs and their tracks.
ContentsKind reanimationContents(int kind);

// True when the list `name` cannot be opened: its contents database has no list of that name.
bool CheckTable(const Db& contentsDb, int kind, const QString& name);

struct RepairReport
{
    int errors = 0;
    QStringList found; // one line per error: the disc and what is wrong with it
};

// Finds the broken links: a Дисков of 0 (set to 1) and ДискID1..6 naming a list that is not
// there (set to Null). With `apply` the errors are mended in one transaction, under the
// exclusive database lock (err::DatabasesBusy while another process writes); without it
// nothing is written. Lists that no row refers to stay.
RepairReport Reanimation(const AppContext& ctx, int kind, bool apply);

// "Операция успешно завершена!" with the count, or "Ошибок не найдено!".
QString reanimationMessage(const RepairReport& report);

// Clears every ДискID1..6 of the kind's catalogue and builds its contents database anew
// (for the computer discs with the filters as at the start). Under the exclusive lock.
void ReanimationReCreate(AppContext& ctx, int kind);

// Builds the three databases anew: the main database in the application folder is deleted
// first, then they are made as at the first start. Under the exclusive lock.
void fullReanimation(AppContext& ctx);

} // namespace vinora
