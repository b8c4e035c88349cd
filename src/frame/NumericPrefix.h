#pragma once

#include <QStringView>

namespace vinora {

// The number at the start of a text, read the way the settings readers have always read
// it: blanks are skipped anywhere, reading stops at the first character that cannot
// continue the number, and a text with no number gives 0 ("12abc" -> 12, "x" -> 0,
// " 1 5" -> 15, "-2.5e1" -> -25, "&H1F" -> 31).
double numericPrefix(QStringView text);

// A number read from a file as a whole number within [low, high]: the fraction dropped,
// NaN as 0, anything beyond the range (infinities included) at its end.
int boundedInt(double value, int low, int high);

} // namespace vinora
