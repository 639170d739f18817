#include "foundation/PXRLock.h"
#include "foundation/PXRRecursiveLock.h"
#include "foundation/PXRThen.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace lb {

TEST(PXRLock, ThrowingBlockReleasesTheLockAndPassesTheErrorOn) {
  PXRLock lock;
  EXPECT_THROW(lock.withLock([]() -> int { throw std::runtime_error("inside"); }), std::runtime_error);
  // Would block for ever if the throw had left the mutex held.
  EXPECT_EQ(lock.withLock([] { return 7; }), 7);
}

TEST(PXRLock, CopiesShareOneMutex) {
  PXRLock original;
  int counter = 0;
  auto work = [&counter](PXRLock lock) {
    for (int i = 0; i < 20'000; ++i) lock.withLock([&] { ++counter; });
  };
  std::thread first(work, original);
  std::thread second(work, PXRLock(original));
  first.join();
  second.join();
  EXPECT_EQ(counter, 40'000);
}

TEST(PXRRecursiveLock, TheHoldingThreadMayLockAgain) {
  PXRRecursiveLock lock;
  EXPECT_EQ(lock.withLock([&] { return lock.withLock([] { return 3; }); }), 3);
}

TEST(PXRThen, ValueTypesChangeACopyAndObjectsChangeThemselves) {
  const std::vector<int> original{1, 2};
  auto changed = pxrThen(original, [](std::vector<int>& v) { v.push_back(3); });
  EXPECT_EQ(original, (std::vector<int>{1, 2}));
  EXPECT_EQ(changed, (std::vector<int>{1, 2, 3}));

  auto object = std::make_shared<std::vector<int>>();
  auto same = pxrThen(object, [](auto& pointer) { pointer->push_back(9); });
  EXPECT_EQ(same.get(), object.get());
  EXPECT_EQ(*object, std::vector<int>{9});
}

} // namespace lb
