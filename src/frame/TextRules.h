#pragma once

#include <QByteArrayView>
#include <QCollator>
#include <QString>
#include <optional>

namespace vinora {

// Free text made safe for the catalogue's tables: a double quotation mark becomes an
// apostrophe, "[" becomes "(", "]" becomes ")".
QString CleanText(const QString& text);

// Key filters of the input fields, on the typed character code: the code passes through
// or 0 comes back to drop it. Backspace is code 8.
int DigitKeys(int keyAscii);     // digits
int DiscCountKeys(int keyAscii); // the digits 1 to 6

// The catalogue's order of names: without regard to case, Cyrillic and Latin alike, in
// Russian alphabetical order.
QCollator textCollator();
// < 0, 0 or > 0 as `a` sorts before, with or after `b`.
int compareText(QStringView a, QStringView b);

// The order of compareText (-1, 0 or 1) where it can be told without the collator: for
// identical texts, texts of printable ASCII alone (most file names, every disc id), and
// the empty text against one that cannot be empty to the collator. Nothing otherwise.
std::optional<int> quickCompareText(QStringView a, QStringView b);
// The same for texts in UTF-8, as the database engine hands them over.
std::optional<int> quickCompareText(QByteArrayView a, QByteArrayView b);

} // namespace vinora
