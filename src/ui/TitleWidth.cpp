#include "ui/TitleWidth.h"

#include <QApplication>
#include <QFontMetrics>
#include <QWidget>

namespace vinora {
namespace {
// The frame's icon, its three buttons and the margins around the title, as common
// desktop themes draw them.
constexpr int kFrameAllowance = 160;
} // namespace

int titleWidth(const QWidget& window)
{
    const QFontMetrics metrics(QApplication::font("QMdiSubWindowTitleBar"));
    return metrics.horizontalAdvance(window.windowTitle()) + kFrameAllowance;
}

void widenToTitle(QWidget& window)
{
    const int needed = titleWidth(window);
    if (window.minimumWidth() < needed) {
        window.setMinimumWidth(qMin(needed, window.maximumWidth()));
    }
    if (window.width() < needed) {
        window.resize(qMin(needed, window.maximumWidth()), window.height());
    }
}

} // namespace vinora
