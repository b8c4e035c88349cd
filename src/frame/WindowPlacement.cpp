#include "frame/WindowPlacement.h"

#include "frame/NumericPrefix.h"

namespace vinora {
namespace {

const QString kWindow = QStringLiteral("Window");
constexpr int kBuffer = 15;

std::optional<double> readNumber(const IniFile& ini, const QString& key)
{
    const QString text = ini.read(kWindow, key, kBuffer);
    if (text.isEmpty()) {
        return std::nullopt;
    }
    return numericPrefix(text);
}

QString singleText(double value)
{
    return QString::number(static_cast<float>(value), 'g', 7);
}

} // namespace

WindowPlacement LoadWinPos(const IniFile& ini)
{
    WindowPlacement placement;
    if (const auto state = readNumber(ini, QStringLiteral("State"))) {
        placement.state = static_cast<int>(*state);
    }
    placement.left = readNumber(ini, QStringLiteral("Left"));
    placement.top = readNumber(ini, QStringLiteral("Top"));
    placement.height = readNumber(ini, QStringLiteral("Height"));
    placement.width = readNumber(ini, QStringLiteral("Width"));
    return placement;
}

void SaveWinPos(const IniFile& ini, int state, double left, double top, double height, double width)
{
    ini.write(kWindow, QStringLiteral("State"), QString::number(state));
    if (state != 0) {
        return;
    }
    ini.write(kWindow, QStringLiteral("Left"), singleText(left));
    ini.write(kWindow, QStringLiteral("Top"), singleText(top));
    ini.write(kWindow, QStringLiteral("Height"), singleText(height));
    ini.write(kWindow, QStringLiteral("Width"), singleText(width));
}

} // namespace vinora
