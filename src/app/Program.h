#pragma once

#include <functional>

namespace vinora {

class AppContext;
class frmMain;

// Called once the main window has been drawn for the first time, with the window and the
// program's context; whoever watches the program's start (a benchmark) measures there.
using FirstPaintWatcher = std::function<void(AppContext& ctx, frmMain& window)>;

// The whole program: the application object, the start up to the main window, the event loop.
// Returns the exit code.
int runProgram(int argc, char* argv[], const FirstPaintWatcher& firstPaint = {});

} // namespace vinora
