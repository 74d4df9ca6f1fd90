// A Clock for tests: time moves only when the test says so, and the timer fires with it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Clock.h"

namespace kelvar::platform
{

/// Starts at 0; Advance moves the time and fires the timer once per interval passed.
class SteppedClock final : public Clock
{
public:
    std::int64_t NowMs() const override { return Now; }

    bool StartTimer(int intervalMs, std::function<void()> tick) override
    {
        Interval = intervalMs;
        Tick = std::move(tick);
        NextTick = Now + intervalMs;
        return Interval > 0;
    }

    void StopTimer() override { Tick = nullptr; }

    /// Moves the time on by `ms`, firing the timer for each interval that ends on the way.
    void Advance(std::int64_t ms)
    {
        const std::int64_t end = Now + ms;
        while (Tick && NextTick <= end)
        {
            Now = NextTick;
            NextTick += Interval;
            Tick();
        }
        Now = end;
    }

private:
    std::int64_t Now = 0;
    std::int64_t NextTick = 0;
    int Interval = 0;
    std::function<void()> Tick;
};

} // namespace kelvar::platform
