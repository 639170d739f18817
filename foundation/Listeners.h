#pragma once

#include <functional>
#include <map>
#include <memory>

namespace lb {

// A registration for notifications; destroying it unregisters.
class NotificationRegistration {
public:
  virtual ~NotificationRegistration() = default;
};

// Whoever wants to be told of something, each until its registration goes.
// A registration may outlive the list. Single-threaded: add, remove and
// notify on one thread.
template <class... Args>
class Listeners {
public:
  std::unique_ptr<NotificationRegistration> add(std::function<void(Args...)> listener) {
    const int key = state_->next++;
    state_->all.emplace(key, std::move(listener));
    return std::make_unique<Registration>(state_, key);
  }

  void notify(const Args&... args) const {
    // A listener may add or remove another while being told.
    auto all = state_->all;
    for (const auto& [key, listener] : all) {
      if (state_->all.contains(key)) listener(args...);
    }
  }

private:
  struct State {
    std::map<int, std::function<void(Args...)>> all;
    int next = 0;
  };

  class Registration final : public NotificationRegistration {
  public:
    Registration(const std::shared_ptr<State>& state, int key) : state_(state), key_(key) {}
    ~Registration() override {
      if (auto state = state_.lock()) state->all.erase(key_);
    }

  private:
    std::weak_ptr<State> state_;
    int key_;
  };

  std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace lb
