#include "frame/WindowPlacement.h"

#include "frame/NumericPrefix.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace vinora {
namespace {

const QString kWindow = QStringLiteral("Window");
constexpr int kBuffer = 15;
// Beyond any screen, yet far from the limits of int arithmetic in the geometry code.
constexpr int kFarthest = 1 << 20;

std::optional<double> readNumber(const IniDocument& doc, const QString& key)
{
    const QString text = doc.read(kWindow, key, kBuffer);
    if (text.isEmpty()) {
        return std::nullopt;
    }
    return numericPrefix(text);
}

QString singleText(double value)
{
    const double inRange = std::isfinite(value) ? std::clamp(value, double(-FLT_MAX), double(FLT_MAX)) : 0.0;
    return QString::number(static_cast<float>(inRange), 'g', 7);
}

std::optional<int> pixels(const std::optional<double>& twips)
{
    if (!twips || !std::isfinite(*twips)) {
        return std::nullopt;
    }
    return boundedInt(*twips / kTwipsPerPixel, -kFarthest, kFarthest);
}

// The start of a span of `size` that lies within [low, low + room), or as near as it can.
int within(int start, int size, int low, int room)
{
    return std::clamp(start, low, low + std::max(room - size, 0));
}

} // namespace

WindowPlacement LoadWinPos(const IniFile& ini)
{
    const IniDocument doc = ini.load();
    WindowPlacement placement;
    if (const auto state = readNumber(doc, QStringLiteral("State"))) {
        placement.state = boundedInt(*state, -kFarthest, kFarthest);
    }
    placement.left = readNumber(doc, QStringLiteral("Left"));
    placement.top = readNumber(doc, QStringLiteral("Top"));
    placement.height = readNumber(doc, QStringLiteral("Height"));
    placement.width = readNumber(doc, QStringLiteral("Width"));
    return placement;
}

QRect placedGeometry(const WindowPlacement& placement, const QRect& designed, const QRect& available)
{
    int left = pixels(placement.left).value_or(designed.left());
    int top = pixels(placement.top).value_or(designed.top());
    int width = designed.width();
    int height = designed.height();
    if (const auto stored = pixels(placement.width); stored && *stored > 0) {
        width = *stored;
    }
    if (const auto stored = pixels(placement.height); stored && *stored > 0) {
        height = *stored;
    }
    if (available.isValid()) {
        width = std::min(width, available.width());
        height = std::min(height, available.height());
        left = within(left, width, available.left(), available.width());
        top = within(top, height, available.top(), available.height());
    } else {
        width = std::clamp(width, 1, kFarthest);
        height = std::clamp(height, 1, kFarthest);
        left = std::clamp(left, -kFarthest, kFarthest);
        top = std::clamp(top, -kFarthest, kFarthest);
    }
    return QRect(left, top, width, height);
}

int placedState(const WindowPlacement& placement)
{
    const int state = placement.state.value_or(0);
    return state == 1 || state == 2 ? state : 0;
}

void SaveWinPos(const IniFile& ini, int state, double left, double top, double height, double width)
{
    // One change of the file: the section is written whole or not at all.
    ini.update([&](IniDocument& doc) {
        doc.write(kWindow, QStringLiteral("State"), QString::number(state));
        if (state != 0) {
            return;
        }
        doc.write(kWindow, QStringLiteral("Left"), singleText(left));
        doc.write(kWindow, QStringLiteral("Top"), singleText(top));
        doc.write(kWindow, QStringLiteral("Height"), singleText(height));
        doc.write(kWindow, QStringLiteral("Width"), singleText(width));
    });
}

} // namespace vinora
