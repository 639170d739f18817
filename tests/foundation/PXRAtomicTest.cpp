#include "foundation/PXRAtomic.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace lb {

TEST(PXRAtomic, ReadersNeverSeeAHalfDoneMutationAndAThrowKeepsWhatWasDone) {
  PXRAtomic<std::pair<long, long>> pair({0, 0});
  std::atomic<bool> done = false;
  std::atomic<int> torn = 0;
  std::atomic<long> reads = 0;
  std::vector<std::thread> readers;
  for (int i = 0; i < 3; ++i) {
    readers.emplace_back([&] {
      while (!done) {
        auto [a, b] = pair.value();
        if (a != b) ++torn;
        ++reads;
        std::this_thread::yield(); // glibc's reader-preferring lock would starve the writer
      }
    });
  }
  // Mutate until the readers have had a fair look, however the threads are
  // scheduled on a busy machine; the cap only keeps a broken build from hanging.
  long last = 0;
  while ((last < 2'000 || reads < 2'000) && last < 50'000'000) {
    ++last;
    pair.mutate([last](std::pair<long, long>& value) {
      value.first = last;
      std::this_thread::yield(); // widen the window a torn read would need
      value.second = last;
    });
  }
  done = true;
  for (auto& reader : readers) reader.join();
  EXPECT_EQ(torn, 0);
  EXPECT_GE(reads, 2'000);
  EXPECT_EQ(pair.value(), std::make_pair(last, last));

  // A mutation's result is returned; a throw keeps what was changed before
  // it. The label names where the value was made.
  PXRAtomic<std::vector<int>> list({});
  const auto made = "PXRAtomicTest.cpp:" + std::to_string(__LINE__ - 1);
  const auto size = list.mutate([](std::vector<int>& v) {
    v.push_back(1);
    return v.size();
  });
  EXPECT_EQ(size, 1u);
  EXPECT_THROW(list.mutate([](std::vector<int>& v) {
    v.push_back(2);
    throw std::runtime_error("after the change");
  }),
               std::runtime_error);
  EXPECT_EQ(list.value(), (std::vector<int>{1, 2}));
  list.setValue({5});
  EXPECT_EQ(list.value(), std::vector<int>{5});
  EXPECT_NE(list.label().find(made), std::string::npos) << list.label();
}

} // namespace lb
