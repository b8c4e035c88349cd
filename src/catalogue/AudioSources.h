#pragma once

#include "cddb/CddbResult.h"

#include <QString>

namespace vinora {

class AppContext;

// The audio catalogue's shift of numbers for a new row written by the CDDB dialog: the
// numbers inside its transaction, the covers after it.
NumberShift audioNumberShift(AppContext& ctx);

// A new audio disc of number ctx.LastSavedNumber straight from the section CurrentDiscID of
// cdplayer.ini: performer, album, this year, numtracks, one disc, the playing time
// `timeText`, no style, the list CurrentDiscID, and the binding too with `bind`. A pending
// shift of numbers runs in the same transaction. False, and nothing written, when the file
// has no performer for the disc.
bool AddNewDisk(AppContext& ctx, bool bind, const QString& timeText);

} // namespace vinora
