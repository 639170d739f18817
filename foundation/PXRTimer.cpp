#include "foundation/PXRTimer.h"

#include "foundation/Precondition.h"

namespace lb {

struct PXRTimer::Target {
  PXRTimer* timer;

  void fire() const {
    if (!timer) return;
    // The block may let go of this very timer (an owner replacing it), so it
    // runs from a copy that outlives the timer.
    auto block = timer->block_;
    block();
  }
};

PXRTimer::PXRTimer(Seconds interval, bool repeats, std::function<void()> block)
    : interval_(interval), repeats_(repeats), block_(std::move(block)) {}

PXRTimer::~PXRTimer() {
  if (target_) target_->timer = nullptr;
  invalidate();
}

void PXRTimer::schedule(TimerScheduler& scheduler) {
  PXR_PRECONDITION(!scheduled_, "a PXRTimer is scheduled at most once");
  scheduled_ = true;
  target_ = std::make_shared<Target>(Target{this});
  timer_ = scheduler.scheduleTimer(interval_, interval_ / 10, repeats_, [target = target_] { target->fire(); });
}

void PXRTimer::invalidate() {
  if (timer_) timer_->invalidate();
}

} // namespace lb
