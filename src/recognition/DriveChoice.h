#pragma once

class QComboBox;

namespace vinora {

class IniFile;

// Fills a drive selector with the drives and registered disc images and selects the chosen
// one (Drive of Option, else the first). With no drive at all the selector is disabled and
// false comes back, so that the window can say so.
bool fillDriveChoice(QComboBox& selector, const IniFile& ini);

} // namespace vinora
