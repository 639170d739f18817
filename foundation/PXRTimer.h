#pragma once

#include "foundation/TimerScheduler.h"

#include <functional>
#include <memory>

namespace lb {

// A block run every `interval` (or once) on the main thread. Letting
// go of the timer stops it: owners replace a timer by storing a new one. The
// block should hold its owner weakly and do nothing when the owner is gone.
class PXRTimer {
public:
  PXRTimer(Seconds interval, bool repeats, std::function<void()> block);
  ~PXRTimer();

  PXRTimer(const PXRTimer&) = delete;
  PXRTimer& operator=(const PXRTimer&) = delete;

  // Starts the timer with a tolerance of a tenth of the interval. A timer is
  // scheduled at most once; to restart, make a new one.
  void schedule(TimerScheduler& scheduler);

  // Stops the timer for good; does nothing if it was never scheduled.
  void invalidate();

  Seconds interval() const { return interval_; }
  bool repeats() const { return repeats_; }

private:
  struct Target;

  Seconds interval_;
  bool repeats_;
  std::function<void()> block_;
  bool scheduled_ = false;
  // The scheduled tick reaches this timer only through the target, which
  // forgets it when the timer goes: a tick already on its way does nothing.
  std::shared_ptr<Target> target_;
  std::unique_ptr<ScheduledTimer> timer_;
};

} // namespace lb
