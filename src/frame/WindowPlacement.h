#pragma once

#include "frame/IniFile.h"

#include <optional>

namespace vinora {

// Window state and position as the Window section keeps them: the state 0 normal,
// 1 minimised, 2 maximised, and the normal position in twips (15 to a pixel at 96 dpi).
struct WindowPlacement
{
    std::optional<int> state;
    std::optional<double> left;
    std::optional<double> top;
    std::optional<double> height;
    std::optional<double> width;
};

inline constexpr int kTwipsPerPixel = 15;

// Each key is read by itself; a missing key stays empty and leaves the window as designed.
WindowPlacement LoadWinPos(const IniFile& ini);

// State always; Left, Top, Height, Width only for the normal state, so a maximised or
// minimised window comes back at the place of its last normal run.
void SaveWinPos(const IniFile& ini, int state, double left, double top, double height, double width);

} // namespace vinora
