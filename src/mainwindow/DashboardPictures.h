#pragma once

#include "store/Category.h"

#include <QPixmap>

namespace vinora {

// The pictures of the main window, drawn so that they follow the palette and the screen's
// scale: by the numbers of the old image list, 2 a disc without a number, 3 a disc with a
// number, 4 no disc, 5 a disc present; and the logos, the overdue sign and the sign of
// external mode.
enum class DiscPicture { Unknown = 2, Known = 3, NoDisc = 4, Present = 5 };

QPixmap discPicture(DiscPicture picture, int size = 32);
QPixmap logoPicture(Category category, bool highlighted);
QPixmap overduePicture(int size = 24);
QPixmap externalModePicture(int size = 16);

} // namespace vinora
