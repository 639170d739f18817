#pragma once

#include <functional>
#include <string>

namespace lb {

// Global keyboard shortcuts, each stored in the user's settings under a key
// and bound to an action while the program runs.
class ShortcutBinder {
public:
  virtual ~ShortcutBinder() = default;
  virtual void bindShortcut(const std::string& defaultsKey, std::function<void()> action) = 0;
  virtual void breakBinding(const std::string& defaultsKey) = 0;
};

} // namespace lb
