// The Clock port over QTimer and a monotonic clock.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Clock.h"

#include <QElapsedTimer>
#include <QTimer>

namespace kelvar::platform
{

/// Time from a monotonic clock; the timer runs on the Qt event loop.
class QtClock final : public Clock
{
public:
    QtClock();

    std::int64_t NowMs() const override;
    bool StartTimer(int intervalMs, std::function<void()> tick) override;
    void StopTimer() override;

private:
    QElapsedTimer Elapsed;
    QTimer Timer;
    std::function<void()> Tick;
};

} // namespace kelvar::platform
