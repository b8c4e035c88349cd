#pragma once

#include <QCursor>
#include <QList>

namespace vinora {

// The hourglass for the life of the guard: set on construction, back to normal on
// destruction, also when an error leaves the scope.
class WaitCursor
{
public:
    WaitCursor();
    ~WaitCursor();
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

// The normal pointer for the life of the guard, whatever hourglasses stand around it; they
// come back on destruction. A question or a window is never shown under the hourglass.
class NormalCursor
{
public:
    NormalCursor();
    ~NormalCursor();
    NormalCursor(const NormalCursor&) = delete;
    NormalCursor& operator=(const NormalCursor&) = delete;

private:
    QList<QCursor> m_paused; // innermost first
};

} // namespace vinora
