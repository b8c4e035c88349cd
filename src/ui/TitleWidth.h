#pragma once

class QWidget;

namespace vinora {

// The width a window needs so that the frame shows its whole title beside the frame's
// icon and buttons.
int titleWidth(const QWidget& window);

// Widens a window that is narrower than its title; a wider window keeps its size.
void widenToTitle(QWidget& window);

} // namespace vinora
