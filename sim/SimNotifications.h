#pragma once

#include "ports/EventLoop.h"
#include "ports/Notifications.h"

#include <optional>
#include <string>
#include <vector>

namespace lb {

// A notification service that keeps what it was asked to show and answers
// later on the main thread, as the desktop's does over the bus.
class SimNotifications final : public Notifications {
public:
  struct Shown {
    Notification notification;
    Id replacing;
  };

  explicit SimNotifications(EventLoop& loop) : loop_(loop) {}

  void show(const Notification& notification, Id replacing, Done done) override {
    shown.push_back({notification, replacing});
    Result<Id> answer = missing ? Result<Id>(Failure{*missing}) : Result<Id>(replacing ? replacing : ++lastId_);
    loop_.post([done = std::move(done), answer = std::move(answer)] { done(answer); });
  }

  // The world's side: while set, there is no service, and this is why.
  std::optional<std::string> missing;
  std::vector<Shown> shown;

private:
  EventLoop& loop_;
  Id lastId_ = 0;
};

} // namespace lb
