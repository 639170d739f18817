#include "foundation/PXRTimer.h"
#include "sim/VirtualEventLoop.h"

#include <gtest/gtest.h>

namespace lb {

TEST(PXRTimer, RepeatsWithATenthOfItsIntervalAsTolerance) {
  VirtualEventLoop loop;
  int ticks = 0;
  PXRTimer timer(Seconds(2.0), true, [&] { ++ticks; });
  timer.schedule(loop);
  ASSERT_EQ(loop.activeTimers().size(), 1u);
  EXPECT_DOUBLE_EQ(loop.activeTimers()[0].interval.count(), 2.0);
  EXPECT_DOUBLE_EQ(loop.activeTimers()[0].tolerance.count(), 0.2);
  loop.advance(1.9);
  EXPECT_EQ(ticks, 0);
  loop.advance(0.1);
  EXPECT_EQ(ticks, 1);
  loop.advance(5.0);
  EXPECT_EQ(ticks, 3);
}

TEST(PXRTimer, LettingGoStopsTheTicks) {
  VirtualEventLoop loop;
  int ticks = 0;
  auto timer = std::make_unique<PXRTimer>(Seconds(1.0), true, [&] { ++ticks; });
  timer->schedule(loop);
  loop.advance(2.0);
  timer.reset();
  loop.advance(10.0);
  EXPECT_EQ(ticks, 2);
  EXPECT_TRUE(loop.activeTimers().empty());
}

TEST(PXRTimer, AnOwnerThatGoesAwayTakesItsTimerWithIt) {
  VirtualEventLoop loop;
  int ticks = 0;
  struct Owner : std::enable_shared_from_this<Owner> {
    int* ticks;
    std::unique_ptr<PXRTimer> timer;
    void start(TimerScheduler& scheduler) {
      timer = std::make_unique<PXRTimer>(Seconds(1.0), true, [weak = weak_from_this()] {
        if (auto self = weak.lock()) ++*self->ticks;
      });
      timer->schedule(scheduler);
    }
  };
  auto owner = std::make_shared<Owner>();
  owner->ticks = &ticks;
  owner->start(loop);
  loop.advance(1.0);
  std::weak_ptr<Owner> watch = owner;
  owner.reset();
  loop.advance(3.0);
  EXPECT_TRUE(watch.expired()); // the timer's block kept no strong hold
  EXPECT_EQ(ticks, 1);
  EXPECT_TRUE(loop.activeTimers().empty());
}

TEST(PXRTimer, ReplacingTheTimerFromItsOwnTickIsSafe) {
  VirtualEventLoop loop;
  std::unique_ptr<PXRTimer> timer;
  int ticks = 0;
  std::function<void()> restart = [&] {
    ++ticks;
    timer = std::make_unique<PXRTimer>(Seconds(1.0), false, restart);
    timer->schedule(loop);
  };
  timer = std::make_unique<PXRTimer>(Seconds(1.0), false, restart);
  timer->schedule(loop);
  loop.advance(3.0);
  EXPECT_EQ(ticks, 3);
}

TEST(PXRTimer, OneShotFiresOnceAndInvalidateBeforeScheduleDoesNothing) {
  VirtualEventLoop loop;
  int ticks = 0;
  PXRTimer timer(Seconds(0.5), false, [&] { ++ticks; });
  timer.invalidate();
  timer.schedule(loop);
  loop.advance(5.0);
  EXPECT_EQ(ticks, 1);
}

TEST(PXRTimer, InvalidateStopsARunningTimer) {
  VirtualEventLoop loop;
  int ticks = 0;
  PXRTimer timer(Seconds(1.0), true, [&] { ++ticks; });
  timer.schedule(loop);
  loop.advance(1.0);
  timer.invalidate();
  loop.advance(5.0);
  EXPECT_EQ(ticks, 1);
}

TEST(PXRTimerDeathTest, SchedulingTwiceIsAProgrammingError) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        VirtualEventLoop loop;
        PXRTimer timer(Seconds(1.0), true, [] {});
        timer.schedule(loop);
        timer.schedule(loop);
      },
      "scheduled at most once");
}

} // namespace lb
