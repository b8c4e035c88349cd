#pragma once

#include <QString>

namespace vinora {

// The program's name and version as its windows and logs show them.
QString programCaption();   // "vinora 1.0"
QString programBuildText(); // "vinora 1.0 build 1"
QString faultLogVersion();  // "1.0 b1"

} // namespace vinora
