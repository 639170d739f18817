#include "foundation/PXRTimer.h"
#include "sim/VirtualEventLoop.h"

#include <gtest/gtest.h>

namespace lb {

TEST(PXRTimer, RepeatsWithATenthOfItsIntervalAsToleranceUntilInvalidated) {
  VirtualEventLoop loop;
  int ticks = 0;
  PXRTimer repeating(Seconds(2.0), true, [&] { ++ticks; });
  repeating.schedule(loop);
  ASSERT_EQ(loop.activeTimers().size(), 1u);
  EXPECT_DOUBLE_EQ(loop.activeTimers()[0].tolerance.count(), 0.2);
  loop.advance(1.9);
  EXPECT_EQ(ticks, 0);
  loop.advance(0.1);
  EXPECT_EQ(ticks, 1);
  loop.advance(5.0);
  EXPECT_EQ(ticks, 3);
  repeating.invalidate();
  loop.advance(5.0);
  EXPECT_EQ(ticks, 3);

  // Replacing the timer from its own tick is safe.
  std::unique_ptr<PXRTimer> timer;
  int restarts = 0;
  std::function<void()> restart = [&] {
    ++restarts;
    timer = std::make_unique<PXRTimer>(Seconds(1.0), false, restart);
    timer->schedule(loop);
  };
  restart();
  loop.advance(3.0);
  EXPECT_EQ(restarts, 4);

  // A one-shot fires once, and an invalidate before its schedule does nothing.
  PXRTimer once(Seconds(0.5), false, [&] { ++restarts; });
  once.invalidate();
  once.schedule(loop);
  timer.reset(); // a timer let go of stops
  loop.advance(5.0);
  EXPECT_EQ(restarts, 5);
  EXPECT_TRUE(loop.activeTimers().empty());
}

} // namespace lb
