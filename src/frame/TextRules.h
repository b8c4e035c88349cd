#pragma once

#include <QCollator>
#include <QString>

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

} // namespace vinora
