#pragma once

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

} // namespace vinora
