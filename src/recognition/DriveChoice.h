#pragma once

#include <QString>

class QComboBox;

namespace vinora {

class IniFile;
class Prompter;

// Fills a drive selector with the drives and registered disc images and selects the chosen
// one (Drive of Option, else the first). With no drive at all the selector is disabled and
// false comes back, so that the window can say so.
bool fillDriveChoice(QComboBox& selector, const IniFile& ini);

// Asks for a disc image to register as a drive; empty when the user cancelled.
QString askForDiskImage(Prompter& prompter);

} // namespace vinora
