#include "foundation/PXRCache.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace lb {

using Keys = std::vector<std::string>;

// A full cache drops the entry written longest ago: a read is no use, a
// write is, and a replacement drops nothing. A fill whose block throws
// stores nothing.
TEST(PXRCache, AFullCacheDropsTheOldestWriteAndStaysConsistent) {
  PXRCache<std::string, int> cache(2);
  cache.setDebug(true);
  cache.setValue("a", 1);
  cache.setValue("b", 2);
  EXPECT_EQ(cache.value("a"), 1);
  cache.setValue("c", 3);
  EXPECT_EQ(cache.keys(), (Keys{"c", "b"}));
  EXPECT_FALSE(cache.value("a"));
  cache.setValue("b", 20);
  EXPECT_EQ(cache.keys(), (Keys{"b", "c"}));
  cache.setValue("d", 4);
  EXPECT_EQ(cache.keys(), (Keys{"d", "b"}));
  EXPECT_EQ(cache.value("b"), 20);

  cache.remove("missing");
  cache.remove("d");
  EXPECT_EQ(cache.keys(), Keys{"b"});
  cache.removeAll();
  EXPECT_EQ(cache.count(), 0);

  auto failing = []() -> int { throw std::runtime_error("unavailable"); };
  EXPECT_THROW(cache.fill("k", failing), std::runtime_error);
  EXPECT_FALSE(cache.value("k"));
  EXPECT_EQ(cache.fill("k", [] { return 5; }), 5);
  EXPECT_EQ(cache.fill("k", failing), 5); // a hit runs no block

  // A list of 100,000 keys is freed without nested destruction, which would
  // overflow the stack, the more so under the sanitizers.
  auto large = std::make_unique<PXRCache<int, int>>(100'000);
  for (int i = 0; i < 100'000; ++i) large->setValue(i, i);
  EXPECT_EQ(large->count(), 100'000);
  large.reset();
}

} // namespace lb
