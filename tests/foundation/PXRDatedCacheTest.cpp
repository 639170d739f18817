#include "foundation/PXRExpiringCache.h"
#include "foundation/PXRRefreshingCache.h"
#include "sim/VirtualEventLoop.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace lb {

using Map = std::map<std::string, int>;

TEST(PXRDatedCache, AnEntryExpiresWhenItsAgeReachesTheInterval) {
  VirtualEventLoop loop;
  PXRExpiringCache<int, std::string> cache(loop, 10, Seconds(300));
  cache.setValue(1, "Speakers");
  loop.advance(299);
  EXPECT_EQ(cache.value(1), "Speakers");
  loop.advance(1);
  EXPECT_FALSE(cache.value(1));
  auto cached = cache.cachedValue(1);
  ASSERT_TRUE(cached);
  EXPECT_FALSE(cached->isCurrent());
  EXPECT_EQ(cached->value, "Speakers");

  PXRExpiringCache<int, int> instant(loop, 10, Seconds(0));
  instant.setValue(1, 1);
  EXPECT_FALSE(instant.value(1));
}

TEST(PXRDatedCache, AnEntryDatedInTheFutureAgesToo) {
  struct SettableClock : Clock {
    Date date = VirtualEventLoop::defaultStart();
    Date now() const override { return date; }
  } clock;
  PXRExpiringCache<int, int> cache(clock, 10, Seconds(300));
  cache.setValue(1, 42);
  clock.date = dateAdding(clock.date, Seconds(-299)); // the system clock was set back
  EXPECT_EQ(cache.value(1), 42);
  clock.date = dateAdding(clock.date, Seconds(-101));
  EXPECT_FALSE(cache.value(1));
}

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
}

TEST(PXRExpiringCache, FillAllEmptiesTheCacheBeforeItsBlockRuns) {
  VirtualEventLoop loop;
  PXRExpiringCache<std::string, int> cache(loop, 10, Seconds(60));
  cache.setValue("other", 1);
  auto found = cache.fillAll("wanted", [&] { cache.setValue("wanted", 2); });
  EXPECT_EQ(found, 2);
  EXPECT_FALSE(cache.cachedValue("other"));
  EXPECT_FALSE(cache.fillAll("absent", [] {}));
}

TEST(PXRRefreshingCache, AFailedRefreshServesTheExpiredValueAndLogs) {
  test::CapturedLog log;
  VirtualEventLoop loop;
  PXRRefreshingCache<int, int> cache(loop, 10, Seconds(60));
  auto failing = []() -> int { throw std::runtime_error("device busy"); };

  EXPECT_THROW(cache.refresh(1, failing), std::runtime_error); // absent: error reaches caller
  EXPECT_FALSE(cache.value(1));

  cache.setValue(1, 10);
  EXPECT_EQ(cache.refresh(1, failing), 10); // current: block not run
  loop.advance(60);
  EXPECT_EQ(cache.value(1), 10); // expired, still served by this kind of cache
  EXPECT_EQ(cache.refresh(1, failing), 10);
  EXPECT_TRUE(log.contains("Error refreshing cache: device busy"));
  EXPECT_FALSE(cache.cachedValue(1)->isCurrent());

  EXPECT_EQ(cache.refresh(1, [] { return 11; }), 11);
  EXPECT_TRUE(cache.cachedValue(1)->isCurrent());
}

TEST(PXRRefreshingCache, RefreshAllKeepsOtherEntries) {
  VirtualEventLoop loop;
  PXRRefreshingCache<std::string, int> cache(loop, 10, Seconds(60));
  cache.setValue("other", 1);
  cache.setValue("wanted", 2);
  loop.advance(61);
  EXPECT_EQ(cache.refreshAll("wanted", [] {}), 2); // expired but present
  EXPECT_EQ(cache.refreshAll("wanted", [&] { cache.setValue("wanted", 3); }), 3);
  EXPECT_EQ(cache.value("other"), 1);
}

TEST(PXRDatedCache, TheCountLimitEvictsTheOldestWrite) {
  VirtualEventLoop loop;
  PXRExpiringCache<std::uint32_t, std::string> names(loop, 1000, Seconds(300));
  for (std::uint32_t id = 1; id <= 1001; ++id) names.setValue(id, "device");
  EXPECT_FALSE(names.cachedValue(1));
  EXPECT_TRUE(names.value(2));
  EXPECT_TRUE(names.value(1001));
}

} // namespace lb
