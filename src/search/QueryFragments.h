#pragma once

#include "store/Category.h"

#include <QString>
#include <QStringList>
#include <array>
#include <optional>

namespace vinora {

class IniFile;

// One condition of a query shortcut as the screen holds it.
struct QueryCondition
{
    QString field; // "Номер", "Название", "Альбом" or the catalogue's dictionary; empty when unused
    QString op;    // "=", "LIKE", "<", ">"; empty while none is chosen
    QString value; // as typed or picked

    bool operator==(const QueryCondition&) const = default;
};

inline constexpr int kQueryConditions = 3;

struct QueryShortcut
{
    QString name;
    Category category = Category::Audio;
    std::array<QueryCondition, kQueryConditions> conditions;
};

// The longest text a reader of query.ini receives (its buffer holds 55 characters with the
// terminator): a longer name or condition would come back cut.
inline constexpr int kQueryIniTextLength = 54;

// The field compared as a number: its value is written without quotes.
inline const QString kNumberField = QStringLiteral("Номер");

// The operators offered for a field: "=" and "LIKE", and for "Номер" also "<" and ">".
QStringList queryOperators(const QString& field);

// True once a value stands in the condition.
bool hasValue(const QueryCondition& condition);

// The label of condition `index` (1..3): "1." while it has no value, "1. - Верно" once it has.
QString conditionMark(int index, const QueryCondition& condition);

// The text a condition adds to the catalogue's statement: "And Номер > 12",
// "And Название LIKE '*abc*'", "And Стиль = 'Rock'". An apostrophe in a quoted value is
// doubled, so the catalogue reads it back as one.
QString conditionFragment(const QueryCondition& condition);

// A stored fragment of that form read back into its condition (quotes and the "*" of LIKE
// taken off, doubled apostrophes made single); nothing for any other text.
std::optional<QueryCondition> readFragment(const QString& fragment);

// The first reason the shortcut cannot be saved as the screen holds it, in the order the
// user meets them; empty when there is none. The name in use is told by saveShortcut.
QString shortcutRefusal(const QueryShortcut& shortcut);

// Writes the shortcut to query.ini as one change of the file: Count, its name under its
// number, and Num, Category and Query1..Query3 under its name. A new shortcut (no
// `editedName`) takes the number after Count; an edited one keeps its number, and a new
// name replaces its old section. Gives the refusal when another shortcut has the name (the
// file is then left as it was), else the empty text. Throws AppError when the file cannot
// be written.
QString saveShortcut(const IniFile& queryIni, const QueryShortcut& shortcut, const QString& editedName = {});

struct StoredShortcut
{
    QueryShortcut shortcut;
    QStringList unreadable; // stored conditions that do not read as the screen writes them
};

// A stored shortcut read back for editing, or nothing when its section is gone.
std::optional<StoredShortcut> storedShortcut(const IniFile& queryIni, const QString& name);

// The name a new shortcut starts with: "Запрос" and the lowest number no shortcut uses.
QString nextShortcutName(const IniFile& queryIni);

} // namespace vinora
