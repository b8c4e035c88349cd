#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace vinora {

class IniFile;

// The user's stored queries in query.ini: section Query holds Count, sections 1..Count
// hold the names in list order, and a section named after each shortcut holds its Num,
// Category and conditions Query1..Query3.
QStringList shortcutNames(const IniFile& queryIni);

struct ShortcutQuery
{
    QString category;  // "AD", "PC", "DVD"
    QString condition; // the conditions joined by blanks
};
// The query of a shortcut, or nothing when its section is gone.
std::optional<ShortcutQuery> shortcutQuery(const IniFile& queryIni, const QString& name);

// Removes a shortcut and closes the gap in the numbering, as one change of the file; the
// work is bounded by the sections the file holds, whatever its Count says. False when Count
// is missing. Throws AppError when the file cannot be written (it then stays as it was).
bool deleteShortcut(const IniFile& queryIni, const QString& name);

} // namespace vinora
