#include "sim/VirtualEventLoop.h"

#include <gtest/gtest.h>

#include <memory>
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
  EXPECT_EQ(VirtualEventLoop().now(), VirtualEventLoop::defaultStart()); // each loop keeps its own time
}

// Held worker items start when the test says; a worker's failure surfaces
// on the main thread; a loop going away ends its sleeping workers.
TEST(VirtualEventLoop, WorkersRunWhenTheTestSaysAndEndWithTheLoop) {
  auto loop = std::make_unique<VirtualEventLoop>();
  loop->holdWorkerItems(true);
  bool done = false;
  loop->runBlocking([] {}, [&] { done = true; });
  loop->advance(10);
  EXPECT_FALSE(done);
  EXPECT_EQ(loop->heldWorkerItemCount(), 1u);
  loop->runHeldWorkerItems();
  EXPECT_FALSE(done); // the completion is posted to the main queue
  loop->runDue();
  EXPECT_TRUE(done);

  loop->holdWorkerItems(false);
  loop->runOnWorker([] { throw std::runtime_error("worker broke"); });
  EXPECT_THROW(loop->runDue(), std::runtime_error);

  bool finishedNormally = false;
  loop->runOnWorker([&] {
    loop->sleepOnWorker(Seconds(100));
    finishedNormally = true;
  });
  loop->runDue();
  loop.reset();
  EXPECT_FALSE(finishedNormally);
}

} // namespace lb
