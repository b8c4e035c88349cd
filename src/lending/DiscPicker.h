#pragma once

#include "store/Category.h"

#include <QString>
#include <functional>

namespace vinora {

// Which discs the picker offers: all, those on the shelf (to lend), those out (to take back).
enum class PickMode { All, OnShelf, Lent };

// Lets the user pick a disc of a catalogue; the number picked, or 0 when cancelled. The
// main window hands in the catalogue's picker, so lending does not depend on the catalogues.
using DiscPicker = std::function<int(Category category, PickMode mode)>;

// The picker's mode text: "fullAD", "addPC", "delDVD".
QString pickModeText(Category category, PickMode mode);

} // namespace vinora
