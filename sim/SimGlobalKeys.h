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

  // The world's side.
  bool available = true;
  std::set<std::string> taken; // by other programs
  bool isGrabbed(const std::string& keySequence) const {
    for (const auto& [id, grab] : grabs_) {
      if (grab.first == keySequence) return true;
    }
    return false;
  }
  void press(const std::string& keySequence) {
    for (const auto& [id, grab] : grabs_) {
      if (grab.first == keySequence) {
        auto action = grab.second; // the action may change the table
        return action();
      }
    }
  }

private:
  std::map<std::string, std::pair<std::string, std::function<void()>>> grabs_;
};

} // namespace lb
