#pragma once

#include <functional>

class QWidget;

namespace vinora {

// Runs `action` when Enter (or Return) is pressed in `field`. The key goes no further, so
// the dialog's default button does not run as well.
void onEnter(QWidget* field, std::function<void()> action);

// True for Enter and Return, the main keyboard's and the keypad's.
bool isEnterKey(int key);

} // namespace vinora
