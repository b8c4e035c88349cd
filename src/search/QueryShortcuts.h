#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace vinora {

class IniDocument;
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

// The list as the file holds it: Count read with a buffer of `bufferLength` characters (0
// when missing or not a number), and the numbered sections 1..Count present, ascending.
// Count is only what the file claims; loops go over `numbers`, so a Count of 9999 over three
// shortcuts costs three.
struct ShortcutList
{
    bool counted = false; // Count gave any character at all
    int count = 0;
    QList<int> numbers;
};
ShortcutList shortcutList(const IniDocument& doc, int bufferLength);

// The place of a shortcut in the list: its Num when that numbered section names it, else
// the first numbered section that does; 0 when the list does not hold it.
int shortcutNumber(const IniDocument& doc, const ShortcutList& list, const QString& name);

// Removes a shortcut and closes the gap in the numbering, as one change of the file; the
// work is bounded by the sections the file holds, whatever its Count says. False when Count
// is missing. Throws AppError when the file cannot be written (it then stays as it was).
bool deleteShortcut(const IniFile& queryIni, const QString& name);

} // namespace vinora
