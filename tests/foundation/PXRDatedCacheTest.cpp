#include "foundation/PXRExpiringCache.h"
#include "sim/VirtualEventLoop.h"

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
}

} // namespace lb
