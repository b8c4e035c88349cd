#pragma once

#include <QDate>
#include <QDateTime>

namespace vinora {

// Today and now, replaceable so that tests run on a fixed day.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
    QDate today() const { return now().date(); }
};

class SystemClock final : public Clock
{
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

} // namespace vinora
