#pragma once

#include "ports/EventLoop.h"

#include <QObject>
#include <QThreadPool>

namespace lb {

// The EventLoop port on Qt's event loop: the main queue is the thread that
// created this object (the one running QCoreApplication::exec), timers are
// QTimers, and blocking calls run in a pool of their own.
class QtEventLoop final : public EventLoop {
public:
  QtEventLoop();
  ~QtEventLoop() override;

  Date now() const override { return std::chrono::system_clock::now(); }
  void post(Task task) override;
  void postAfter(Seconds delay, Task task) override;
  std::unique_ptr<ScheduledTimer> scheduleTimer(Seconds interval, Seconds tolerance, bool repeats,
                                                std::function<void()> tick) override;
  void runOnWorker(Task work) override;
  void sleepOnWorker(Seconds duration) override;

  // Whether every worker has finished within `limit`. A worker blocked in a
  // system call may never finish: the caller then must not destroy what it
  // reaches.
  bool waitForWorkers(Seconds limit);

private:
  QObject context_;
  QThreadPool workers_;
};

} // namespace lb
