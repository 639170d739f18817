#include "sim/VirtualEventLoop.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace lb {

TEST(VirtualEventLoop, RunsWorkInTimeOrderIncludingWorkItPosts) {
  VirtualEventLoop loop;
  std::vector<std::string> order;
  loop.postAfter(Seconds(2), [&] { order.push_back("at 2"); });
  loop.postAfter(Seconds(1), [&] {
    order.push_back("at 1");
    loop.post([&] { order.push_back("posted at 1"); });
    loop.postAfter(Seconds(0.5), [&] { order.push_back("at 1.5"); });
  });
  loop.post([&] { order.push_back("now"); });
  loop.advance(1.75);
  EXPECT_EQ(order, (std::vector<std::string>{"now", "at 1", "posted at 1", "at 1.5"}));
  EXPECT_DOUBLE_EQ(timeBetween(VirtualEventLoop::defaultStart(), loop.now()).count(), 1.75);
  loop.advance(1);
  EXPECT_EQ(order.back(), "at 2");
}

TEST(VirtualEventLoop, ABlockingWorkerCallInterleavesWithMainThreadEvents) {
  VirtualEventLoop loop;
  std::vector<std::string> order;
  loop.runBlocking(
      [&] {
        loop.sleepOnWorker(Seconds(3)); // a connect that takes three seconds
        return std::string("connected");
      },
      [&](std::string result) { order.push_back(result); });
  loop.postAfter(Seconds(1), [&] { order.push_back("notification at 1"); });
  loop.advance(2.9);
  EXPECT_EQ(order, std::vector<std::string>{"notification at 1"});
  loop.advance(0.1);
  EXPECT_EQ(order, (std::vector<std::string>{"notification at 1", "connected"}));
}

TEST(VirtualEventLoop, HeldWorkerItemsStartWhenTheTestSays) {
  VirtualEventLoop loop;
  loop.holdWorkerItems(true);
  bool done = false;
  loop.runBlocking([] {}, [&] { done = true; });
  loop.advance(10);
  EXPECT_FALSE(done);
  EXPECT_EQ(loop.heldWorkerItemCount(), 1u);
  loop.runHeldWorkerItems();
  EXPECT_FALSE(done); // the completion is posted to the main queue
  loop.runDue();
  EXPECT_TRUE(done);
}

TEST(VirtualEventLoop, AWorkerFailureSurfacesOnTheMainThread) {
  VirtualEventLoop loop;
  loop.runOnWorker([] { throw std::runtime_error("worker broke"); });
  EXPECT_THROW(loop.runDue(), std::runtime_error);
}

TEST(VirtualEventLoop, ALoopGoingAwayEndsItsSleepingWorkers) {
  bool finishedNormally = false;
  {
    VirtualEventLoop loop;
    loop.runOnWorker([&] {
      loop.sleepOnWorker(Seconds(100));
      finishedNormally = true;
    });
    loop.runDue();
  }
  EXPECT_FALSE(finishedNormally);
}

TEST(VirtualEventLoop, TwoLoopsKeepTheirOwnTime) {
  VirtualEventLoop first, second;
  first.advance(10);
  EXPECT_DOUBLE_EQ(timeBetween(second.now(), first.now()).count(), 10);
}

} // namespace lb
