#pragma once

class QWidget;

namespace vinora {

// Keeps a dialog at least as wide as its title bar needs for the whole title (the text, the
// icon and the window buttons), now and whenever the title changes, so that no window
// manager cuts the title short. Every dialog shown through the prompter gets this; a dialog
// without a layout, or one that has it already, is left as it is.
void keepTitleVisible(QWidget* dialog);

} // namespace vinora
