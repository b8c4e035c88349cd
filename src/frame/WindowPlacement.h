#pragma once

#include "frame/IniFile.h"

#include <QRect>
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

// Where the window goes: the stored size and place in pixels over the designed geometry,
// kept within `available` (the screen's free area; an empty one leaves only the sanity
// bounds). A stored number that is not finite or not a positive size leaves the designed one.
QRect placedGeometry(const WindowPlacement& placement, const QRect& designed, const QRect& available);

// The state to show: 0 normal, 1 minimised, 2 maximised; any other stored value is normal.
int placedState(const WindowPlacement& placement);

// State always; Left, Top, Height, Width only for the normal state, so a maximised or
// minimised window comes back at the place of its last normal run.
void SaveWinPos(const IniFile& ini, int state, double left, double top, double height, double width);

} // namespace vinora
