// The clock port: the time, and the periodic timer of the session.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>

namespace kelvar::platform
{

/// Time and a repeating timer. The editor uses a Qt timer; tests step a clock by hand.
class Clock
{
public:
    virtual ~Clock() = default;

    /// Milliseconds since some fixed start.
    virtual std::int64_t NowMs() const = 0;

    /// Calls `tick` every `intervalMs` milliseconds from now on (replacing an earlier timer).
    /// Returns false when no timer could be set.
    virtual bool StartTimer(int intervalMs, std::function<void()> tick) = 0;

    /// Stops the timer.
    virtual void StopTimer() = 0;
};

} // namespace kelvar::platform
