#include "foundation/PXRLock.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace lb {

// A throwing block releases the lock and passes the error on; copies share
// one mutex.
TEST(PXRLock, ThrowingBlockReleasesTheLockAndCopiesShareOneMutex) {
  PXRLock original;
  EXPECT_THROW(original.withLock([]() -> int { throw std::runtime_error("inside"); }), std::runtime_error);
  // Would block for ever if the throw had left the mutex held.
  EXPECT_EQ(original.withLock([] { return 7; }), 7);
  int counter = 0;
  auto work = [&counter](PXRLock lock) {
    for (int i = 0; i < 20'000; ++i) lock.withLock([&] { ++counter; });
  };
  { std::jthread first(work, original), second(work, PXRLock(original)); }
  EXPECT_EQ(counter, 40'000);
}

} // namespace lb
