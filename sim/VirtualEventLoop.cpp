#include "sim/VirtualEventLoop.h"

#include "foundation/Precondition.h"

#include <algorithm>

namespace lb {

namespace {
// Thrown inside a sleeping worker when the loop goes away, to unwind it.
struct WorkerAbandoned {};
} // namespace

struct VirtualEventLoop::Worker {
  std::thread thread;
  bool mayRun = false;
  bool yielded = false;
  bool finished = false;
  bool abandoned = false;
};

struct VirtualEventLoop::Timer {
  TimerInfo info;
  std::function<void()> tick;
  bool valid = true;
};

class VirtualEventLoop::TimerHandle final : public ScheduledTimer {
public:
  explicit TimerHandle(std::shared_ptr<Timer> timer) : timer_(std::move(timer)) {}
  ~TimerHandle() override { invalidate(); }
  void invalidate() override { timer_->valid = false; }

private:
  std::shared_ptr<Timer> timer_;
};

thread_local VirtualEventLoop::Worker* VirtualEventLoop::currentWorker_ = nullptr;

VirtualEventLoop::VirtualEventLoop(Date start) : now_(start) {}

VirtualEventLoop::~VirtualEventLoop() {
  for (auto& worker : workers_) {
    std::unique_lock lock(mutex_);
    worker.abandoned = true;
    worker.mayRun = true;
    worker.yielded = false;
    changed_.notify_all();
    changed_.wait(lock, [&] { return worker.yielded; });
  }
  for (auto& worker : workers_) worker.thread.join();
}

Date VirtualEventLoop::defaultStart() { return Date{} + std::chrono::seconds(1'800'000'000); }

Date VirtualEventLoop::now() const {
  std::lock_guard lock(mutex_);
  return now_;
}

void VirtualEventLoop::enqueue(Date when, Task task) {
  std::lock_guard lock(mutex_);
  events_.emplace(Key{when, sequence_++}, std::move(task));
}

void VirtualEventLoop::post(Task task) { enqueue(now(), std::move(task)); }

void VirtualEventLoop::postAfter(Seconds delay, Task task) {
  enqueue(dateAdding(now(), std::max(delay, Seconds::zero())), std::move(task));
}

std::unique_ptr<ScheduledTimer> VirtualEventLoop::scheduleTimer(Seconds interval, Seconds tolerance, bool repeats,
                                                                std::function<void()> tick) {
  PXR_PRECONDITION(interval > Seconds::zero(), "a timer needs a positive interval");
  auto timer = std::make_shared<Timer>(Timer{{interval, tolerance, repeats}, std::move(tick)});
  std::erase_if(timers_, [](const auto& weak) { return weak.expired(); });
  timers_.push_back(timer);
  Date due = dateAdding(now(), interval);
  enqueue(due, [this, weak = std::weak_ptr(timer), due] { fire(weak, due); });
  return std::make_unique<TimerHandle>(std::move(timer));
}

void VirtualEventLoop::fire(const std::weak_ptr<Timer>& weak, Date due) {
  auto timer = weak.lock();
  if (!timer || !timer->valid) return;
  if (timer->info.repeats) {
    // The next firing counts from this one's due time, so the phase holds.
    Date next = dateAdding(due, timer->info.interval);
    enqueue(next, [this, weak, next] { fire(weak, next); });
  } else {
    timer->valid = false;
  }
  auto tick = timer->tick;
  tick();
}

void VirtualEventLoop::runOnWorker(Task work) {
  {
    std::lock_guard lock(mutex_);
    if (holdWorkers_) {
      heldWorkers_.push_back(std::move(work));
      return;
    }
  }
  post([this, work = std::move(work)]() mutable { startWorker(std::move(work)); });
}

void VirtualEventLoop::startWorker(Task work) {
  Worker* worker;
  {
    std::lock_guard lock(mutex_);
    worker = &workers_.emplace_back();
  }
  worker->thread = std::thread([this, worker, work = std::move(work)] {
    currentWorker_ = worker;
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [&] { return worker->mayRun; });
    }
    std::exception_ptr failure;
    try {
      work();
    } catch (const WorkerAbandoned&) {
    } catch (...) {
      failure = std::current_exception();
    }
    std::lock_guard lock(mutex_);
    if (failure && !workerFailure_) workerFailure_ = failure;
    worker->finished = true;
    worker->yielded = true;
    changed_.notify_all();
  });
  resume(*worker);
}

// Lets `worker` run and waits until it sleeps or ends; a failure inside it is
// rethrown here, on the main thread, where the test sees it.
void VirtualEventLoop::resume(Worker& worker) {
  std::exception_ptr failure;
  {
    std::unique_lock lock(mutex_);
    worker.mayRun = true;
    worker.yielded = false;
    changed_.notify_all();
    changed_.wait(lock, [&] { return worker.yielded; });
    std::swap(failure, workerFailure_);
  }
  if (worker.finished) {
    worker.thread.join();
    std::lock_guard lock(mutex_);
    workers_.remove_if([&](const Worker& each) { return &each == &worker; });
  }
  if (failure) std::rethrow_exception(failure);
}

void VirtualEventLoop::sleepOnWorker(Seconds duration) {
  Worker* worker = currentWorker_;
  PXR_PRECONDITION(worker != nullptr, "sleepOnWorker is only for worker threads");
  std::unique_lock lock(mutex_);
  events_.emplace(Key{dateAdding(now_, std::max(duration, Seconds::zero())), sequence_++},
                  [this, worker] { resume(*worker); });
  worker->mayRun = false;
  worker->yielded = true;
  changed_.notify_all();
  changed_.wait(lock, [&] { return worker->mayRun; });
  if (worker->abandoned) throw WorkerAbandoned{};
}

void VirtualEventLoop::advance(double seconds) {
  PXR_PRECONDITION(currentWorker_ == nullptr, "advance runs on the main thread");
  const Date target = dateAdding(now(), Seconds(std::max(seconds, 0.0)));
  for (;;) {
    Task task;
    {
      std::lock_guard lock(mutex_);
      auto first = events_.begin();
      if (first == events_.end() || std::get<0>(first->first) > target) break;
      now_ = std::get<0>(first->first);
      task = std::move(first->second);
      events_.erase(first);
    }
    task();
  }
  std::lock_guard lock(mutex_);
  now_ = target;
}

void VirtualEventLoop::holdWorkerItems(bool hold) {
  std::lock_guard lock(mutex_);
  holdWorkers_ = hold;
}

void VirtualEventLoop::runHeldWorkerItems() {
  std::vector<Task> held;
  {
    std::lock_guard lock(mutex_);
    held.swap(heldWorkers_);
  }
  for (auto& work : held) startWorker(std::move(work));
}

std::size_t VirtualEventLoop::heldWorkerItemCount() const {
  std::lock_guard lock(mutex_);
  return heldWorkers_.size();
}

std::vector<VirtualEventLoop::TimerInfo> VirtualEventLoop::activeTimers() const {
  std::vector<TimerInfo> result;
  for (const auto& weak : timers_) {
    if (auto timer = weak.lock(); timer && timer->valid) result.push_back(timer->info);
  }
  return result;
}

} // namespace lb
