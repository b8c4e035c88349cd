#pragma once

#include <QDate>

namespace vinora {

class AppContext;

// The backup set as the wizard and vinora-cli keep it: the set itself (store/BackupSet.h)
// and the date of the last backup, РезервнаяКопия, in the live main database.

// The stored date of the last backup; invalid when there is none.
QDate lastBackupDate(const AppContext& ctx);

// Makes the set, then stores today as the date of the last backup: in the live database,
// not in the set.
void createBackup(const AppContext& ctx);

// Puts the set in place of the databases, the three together or none, and keeps the date
// of the last backup that the databases had before.
void recoverBackup(const AppContext& ctx);

// Removes the set and the date of it.
void deleteBackup(const AppContext& ctx);

} // namespace vinora
