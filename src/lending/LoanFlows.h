#pragma once

#include "store/Category.h"

#include <QString>

class QWidget;

namespace vinora {

class AppContext;

// The lending command of a catalogue (cmdDue) for the disc of record `key`: a disc on the
// shelf is lent through "Добавление должника" after a question, a lent disc is taken back
// after a question. Faults are reported under `place`. True when the ledger changed.
bool lendOrTakeBack(AppContext& ctx, Category category, qint64 key, const QString& place, QWidget* parent);

} // namespace vinora
