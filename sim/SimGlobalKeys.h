#pragma once

#include "ports/GlobalKeys.h"

#include <map>
#include <set>

namespace lb {

// Global keys as a table; `press` plays a key press anywhere.
class SimGlobalKeys final : public GlobalKeys {
public:
  std::optional<std::string> method() const override {
    return available ? std::optional<std::string>("simulated keys") : std::nullopt;
  }
  void grab(const std::string& id, const std::string& keySequence, const std::string&, std::function<void()> pressed,
            Done done) override {
    grabs_.erase(id);
    if (taken.contains(keySequence)) return done(Failure{"%@ is taken by another program"});
    grabs_[id] = {keySequence, std::move(pressed)};
    done(keySequence);
  }
  void release(const std::string& id) override { grabs_.erase(id); }
  // As X11: a suspended key is no grab, and its presses go to the window.
  void setSuspended(bool suspended) override { suspended_ = suspended; }

  // The world's side.
  bool available = true;
  std::set<std::string> taken; // by other programs
  bool isGrabbed(const std::string& keySequence) const {
    if (suspended_) return false;
    for (const auto& [id, grab] : grabs_) {
      if (grab.first == keySequence) return true;
    }
    return false;
  }
  void press(const std::string& keySequence) {
    if (suspended_) return;
    for (const auto& [id, grab] : grabs_) {
      if (grab.first == keySequence) {
        auto action = grab.second; // the action may change the table
        return action();
      }
    }
  }

private:
  std::map<std::string, std::pair<std::string, std::function<void()>>> grabs_;
  bool suspended_ = false;
};

} // namespace lb
