#pragma once

#include "foundation/Clock.h"
#include "foundation/TimerScheduler.h"

#include <functional>
#include <type_traits>
#include <utility>

namespace lb {

// What the program needs of a run loop: the main queue, delays and timers on
// it, a worker queue for calls that block, and the wall clock. Everything
// that touches program state runs on the main thread; only blocking platform
// calls run on workers, and they hand their results back with `post`.
class EventLoop : public Clock, public TimerScheduler {
public:
  using Task = std::function<void()>;

  // Runs `task` on the main thread after the work already queued there.
  // Safe to call from any thread.
  virtual void post(Task task) = 0;

  // Runs `task` on the main thread `delay` from now.
  virtual void postAfter(Seconds delay, Task task) = 0;

  // Runs `work` on a worker thread.
  virtual void runOnWorker(Task work) = 0;

  // Blocks the calling worker thread for `duration`. Only for worker threads.
  virtual void sleepOnWorker(Seconds duration) = 0;

  // Runs `work` on a worker thread and then `completion` with its result on
  // the main thread.
  template <class Work, class Completion>
  void runBlocking(Work work, Completion completion) {
    runOnWorker([this, work = std::move(work), completion = std::move(completion)]() mutable {
      if constexpr (std::is_void_v<std::invoke_result_t<Work&>>) {
        work();
        post(std::move(completion));
      } else {
        post([completion = std::move(completion), result = work()]() mutable { completion(std::move(result)); });
      }
    });
  }
};

} // namespace lb
