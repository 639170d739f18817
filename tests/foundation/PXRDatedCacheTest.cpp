#include "foundation/PXRExpiringCache.h"
#include "foundation/PXRRefreshingCache.h"
#include "sim/VirtualEventLoop.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace lb {

// An entry expires when its age reaches the interval, and the oldest write
// makes room; a fill runs only when the value is not current.
TEST(PXRExpiringCache, FillRunsOnlyWhenTheValueIsNotCurrent) {
  VirtualEventLoop loop;
  PXRExpiringCache<int, std::string> cache(loop, 10, Seconds(60));
  int runs = 0;
  auto fetch = [&] { return "name " + std::to_string(++runs); };
  EXPECT_EQ(cache.fill(7, fetch), "name 1");
  loop.advance(59);
  EXPECT_EQ(cache.fill(7, fetch), "name 1");
  loop.advance(1);
  EXPECT_EQ(cache.fill(7, fetch), "name 2");

  loop.advance(60);
  EXPECT_THROW(cache.fill(7, []() -> std::string { throw std::runtime_error("gone"); }), std::runtime_error);
  auto kept = cache.cachedValue(7);
  ASSERT_TRUE(kept);
  EXPECT_FALSE(kept->isCurrent());
  EXPECT_EQ(kept->value, "name 2");
  for (int id = 10; id < 20; ++id) cache.setValue(id, "device");
  EXPECT_FALSE(cache.cachedValue(7));
  EXPECT_TRUE(cache.value(10));

  // Filling them all empties the cache before the block runs.
  EXPECT_EQ(cache.fillAll(8, [&] { cache.setValue(8, "wanted"); }), "wanted");
  EXPECT_FALSE(cache.cachedValue(10));
  EXPECT_FALSE(cache.fillAll(9, [] {}));
}

TEST(PXRRefreshingCache, AFailedRefreshServesTheExpiredValueAndLogs) {
  test::CapturedLog log;
  VirtualEventLoop loop;
  PXRRefreshingCache<int, int> cache(loop, 10, Seconds(60));
  auto failing = []() -> int { throw std::runtime_error("device busy"); };

  EXPECT_THROW(cache.refresh(1, failing), std::runtime_error); // absent: error reaches caller

  cache.setValue(1, 10);
  EXPECT_EQ(cache.refresh(1, failing), 10); // current: block not run
  loop.advance(60);
  EXPECT_EQ(cache.value(1), 10); // expired, still served by this kind of cache
  EXPECT_EQ(cache.refresh(1, failing), 10);
  EXPECT_TRUE(log.contains("Error refreshing cache: device busy"));
  EXPECT_FALSE(cache.cachedValue(1)->isCurrent());

  EXPECT_EQ(cache.refresh(1, [] { return 11; }), 11);
  EXPECT_TRUE(cache.cachedValue(1)->isCurrent());

  // Refreshing them all keeps the others.
  cache.setValue(2, 20);
  loop.advance(61);
  EXPECT_EQ(cache.refreshAll(2, [] {}), 20); // expired but present
  EXPECT_EQ(cache.refreshAll(2, [&] { cache.setValue(2, 21); }), 21);
  EXPECT_EQ(cache.value(1), 11);
}

} // namespace lb
