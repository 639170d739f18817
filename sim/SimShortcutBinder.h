#pragma once

#include "ports/ShortcutBinder.h"

#include <map>

namespace lb {

// Shortcuts as a table of bound keys; `press` plays a key press.
class SimShortcutBinder final : public ShortcutBinder {
public:
  void bindShortcut(const std::string& defaultsKey, std::function<void()> action) override {
    bindings_[defaultsKey] = std::move(action);
  }
  void breakBinding(const std::string& defaultsKey) override { bindings_.erase(defaultsKey); }

  bool isBound(const std::string& defaultsKey) const { return bindings_.contains(defaultsKey); }
  void press(const std::string& defaultsKey) {
    if (auto found = bindings_.find(defaultsKey); found != bindings_.end()) found->second();
  }

private:
  std::map<std::string, std::function<void()>> bindings_;
};

} // namespace lb
