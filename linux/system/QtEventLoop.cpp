#include "linux/system/QtEventLoop.h"

#include <QMetaObject>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <thread>

namespace lb {

namespace {

class QtTimerHandle final : public ScheduledTimer {
public:
  explicit QtTimerHandle(QTimer* timer) : timer_(timer) {}
  ~QtTimerHandle() override {
    if (timer_) timer_->deleteLater();
  }
  void invalidate() override {
    if (timer_) timer_->stop();
  }

private:
  QPointer<QTimer> timer_;
};

// Qt counts in int milliseconds: a day at most, and nothing undefined for
// NaN or a huge number.
int milliseconds(Seconds duration) {
  const double count = duration.count();
  if (!(count > 0)) return 0;
  return static_cast<int>(std::min(count, 86'400.0) * 1000.0 + 0.5);
}

} // namespace

QtEventLoop::QtEventLoop() {
  // Up to eight devices can page at once; more wait their turn.
  workers_.setMaxThreadCount(8);
}

QtEventLoop::~QtEventLoop() { workers_.waitForDone(); }

void QtEventLoop::post(Task task) { QMetaObject::invokeMethod(&context_, std::move(task), Qt::QueuedConnection); }

void QtEventLoop::postAfter(Seconds delay, Task task) {
  // A timer starts on the thread that owns its context; hop there first.
  post([this, delay, task = std::move(task)]() mutable {
    QTimer::singleShot(milliseconds(delay), &context_, std::move(task));
  });
}

std::unique_ptr<ScheduledTimer> QtEventLoop::scheduleTimer(Seconds interval, Seconds tolerance, bool repeats,
                                                           std::function<void()> tick) {
  auto* timer = new QTimer(&context_);
  timer->setInterval(milliseconds(interval));
  timer->setSingleShot(!repeats);
  // Qt's coarse timers may fire 5% early or late; finer tolerances get a
  // precise timer.
  timer->setTimerType(tolerance >= interval * 0.05 ? Qt::CoarseTimer : Qt::PreciseTimer);
  QObject::connect(timer, &QTimer::timeout, &context_, std::move(tick));
  timer->start();
  return std::make_unique<QtTimerHandle>(timer);
}

void QtEventLoop::runOnWorker(Task work) { workers_.start(std::move(work)); }

bool QtEventLoop::waitForWorkers(Seconds limit) { return workers_.waitForDone(milliseconds(limit)); }

void QtEventLoop::sleepOnWorker(Seconds duration) { std::this_thread::sleep_for(std::max(duration, Seconds::zero())); }

} // namespace lb
