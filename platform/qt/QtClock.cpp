// The Clock port over QTimer and a monotonic clock.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/QtClock.h"

namespace kelvar::platform
{

QtClock::QtClock()
{
    Elapsed.start();
    QObject::connect(&Timer, &QTimer::timeout,
                     [this]
                     {
                         if (Tick)
                         {
                             Tick();
                         }
                     });
}

std::int64_t QtClock::NowMs() const
{
    return Elapsed.elapsed();
}

bool QtClock::StartTimer(int intervalMs, std::function<void()> tick)
{
    if (intervalMs <= 0)
    {
        return false;
    }
    Tick = std::move(tick);
    Timer.start(intervalMs);
    return Timer.isActive();
}

void QtClock::StopTimer()
{
    Timer.stop();
    Tick = nullptr;
}

} // namespace kelvar::platform
