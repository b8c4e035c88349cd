#include "lending/DiscPicker.h"

namespace vinora {

QString pickModeText(Category category, PickMode mode)
{
    const QString prefix = mode == PickMode::All       ? QStringLiteral("full")
                           : mode == PickMode::OnShelf ? QStringLiteral("add")
                                                       : QStringLiteral("del");
    return prefix + categoryInfo(category).code;
}

} // namespace vinora
