#pragma once

#include <QTimer>
#include <initializer_list>

class QWidget;

namespace vinora {

// The timer of a blinking sign, set from a setting of the options: 1 holds the sign steady,
// any other value v blinks it every v / 10 ms, and a value below 10 gives the interval 0,
// a timer that never ticks (the sign stays as it was put).
class BlinkTimer : public QTimer
{
    Q_OBJECT
public:
    explicit BlinkTimer(QObject* parent = nullptr) : QTimer(parent) {}

    // The interval for a setting's value.
    static int intervalFor(double settingValue);
    void configure(double settingValue) { setInterval(intervalFor(settingValue)); }
    bool steady() const { return interval() == 1; }

    // Starts the blinking, unless the interval is 0.
    void startBlinking();
    // One tick for the widgets of one sign: steady, they are shown and the timer rests
    // (nothing would change until the next start); else they are shown when hidden and
    // hidden when shown, together.
    void blink(std::initializer_list<QWidget*> sign);
};

} // namespace vinora
