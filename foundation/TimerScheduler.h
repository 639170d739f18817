#pragma once

#include "foundation/Clock.h"

#include <functional>
#include <memory>

namespace lb {

// A timer running on the main thread's event loop. Destroying the handle
// stops the timer, as `invalidate` does.
class ScheduledTimer {
public:
  virtual ~ScheduledTimer() = default;
  virtual void invalidate() = 0;
};

// Starts timers on the main thread's event loop.
class TimerScheduler {
public:
  virtual ~TimerScheduler() = default;

  // `tick` runs on the main thread every `interval` (or once), give or take
  // `tolerance`, until the returned handle is invalidated or gone.
  virtual std::unique_ptr<ScheduledTimer> scheduleTimer(Seconds interval, Seconds tolerance, bool repeats,
                                                        std::function<void()> tick) = 0;
};

} // namespace lb
