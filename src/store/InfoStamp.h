#pragma once

#include "store/Category.h"

#include <QDate>

namespace vinora {

class Db;

// _Информация holds at most one row of four dates: the last change of each catalogue and
// the last backup. The first writer adds the row; readers take a missing row as no date.
void StampCatalogueUpdate(const Db& db, Category category, const QDate& today);
void StampBackup(const Db& db, const QDate& today);
// The stored date, invalid when there is no row or no date.
QDate readStamp(const Db& db, const QString& field);

} // namespace vinora
