#pragma once

#include "ports/ShortcutBinder.h"

namespace lb {

// Global shortcuts need the tray's key grabs or the desktop's portal; until
// then no shortcut is bound, and lanternbud-ctl is the way to toggle.
class UnboundShortcuts final : public ShortcutBinder {
public:
  void bindShortcut(const std::string&, std::function<void()>) override {}
  void breakBinding(const std::string&) override {}
};

} // namespace lb
