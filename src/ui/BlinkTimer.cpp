#include "ui/BlinkTimer.h"

#include "frame/NumericPrefix.h"

#include <QWidget>
#include <climits>

namespace vinora {

int BlinkTimer::intervalFor(double settingValue)
{
    if (settingValue == 1) {
        return 1;
    }
    return boundedInt(settingValue / 10, 0, INT_MAX);
}

void BlinkTimer::startBlinking()
{
    if (interval() > 0) {
        start();
    }
}

void BlinkTimer::blink(std::initializer_list<QWidget*> sign)
{
    if (sign.size() == 0) {
        return;
    }
    const bool show = steady() || (*sign.begin())->isHidden();
    for (QWidget* widget : sign) {
        widget->setVisible(show);
    }
    if (steady()) {
        stop();
    }
}

} // namespace vinora
