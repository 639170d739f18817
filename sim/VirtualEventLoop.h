#pragma once

#include "ports/EventLoop.h"

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <tuple>
#include <vector>

namespace lb {

// An event loop in simulated time. Nothing happens until the test advances
// the clock; then everything that falls due runs in time order, including
// work that the running work posts.
//
// Worker items run on real threads, but one at a time and in lockstep with
// the main thread: a worker runs until it finishes or sleeps, and its sleep
// ends when simulated time reaches the wake-up. So a blocking call can take
// "five seconds" that cost nothing, and interleave deterministically with
// main-thread events.
class VirtualEventLoop final : public EventLoop {
public:
  struct TimerInfo {
    Seconds interval;
    Seconds tolerance;
    bool repeats;
  };

  explicit VirtualEventLoop(Date start = defaultStart());
  ~VirtualEventLoop() override;

  VirtualEventLoop(const VirtualEventLoop&) = delete;
  VirtualEventLoop& operator=(const VirtualEventLoop&) = delete;

  // A fixed, unremarkable moment, so runs repeat exactly.
  static Date defaultStart();

  Date now() const override;
  void post(Task task) override;
  void postAfter(Seconds delay, Task task) override;
  std::unique_ptr<ScheduledTimer> scheduleTimer(Seconds interval, Seconds tolerance, bool repeats,
                                                std::function<void()> tick) override;
  void runOnWorker(Task work) override;
  void sleepOnWorker(Seconds duration) override;

  // Moves the clock forward by `seconds`, running everything that falls due
  // on the way. A plain number keeps tests short.
  void advance(double seconds);
  // Runs what is due now, and what that posts for now.
  void runDue() { advance(0); }

  // While held, worker items wait until `runHeldWorkerItems`, so a test can
  // decide when a blocking call starts.
  void holdWorkerItems(bool hold);
  void runHeldWorkerItems();
  std::size_t heldWorkerItemCount() const;

  // The timers that are still running.
  std::vector<TimerInfo> activeTimers() const;

private:
  struct Worker;
  struct Timer;
  class TimerHandle;
  using Key = std::tuple<Date, std::uint64_t>;

  void enqueue(Date when, Task task);
  void fire(const std::weak_ptr<Timer>& timer, Date due);
  void startWorker(Task work);
  void resume(Worker& worker);

  static thread_local Worker* currentWorker_;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  Date now_;
  std::uint64_t sequence_ = 0;
  std::map<Key, Task> events_;
  bool holdWorkers_ = false;
  std::vector<Task> heldWorkers_;
  std::list<Worker> workers_;
  std::vector<std::weak_ptr<Timer>> timers_;
  std::exception_ptr workerFailure_;
};

} // namespace lb
