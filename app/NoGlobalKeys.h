#pragma once

#include "ports/GlobalKeys.h"

namespace lb {

// Where the desktop offers programs no global keys (a Wayland desktop
// without the portal's GlobalShortcuts, or no display): nothing is grabbed.
class NoGlobalKeys final : public GlobalKeys {
public:
  std::optional<std::string> method() const override { return std::nullopt; }
  void grab(const std::string&, const std::string&, const std::string&, std::function<void()>, Done) override {}
  void release(const std::string&) override {}
  void setSuspended(bool) override {}
};

} // namespace lb
