#pragma once

#include "ports/Windows.h"

namespace lb {

// Windows until there is a window toolkit: the preferences cannot be shown,
// and a termination request ends Qt's event loop.
class HeadlessWindows final : public Windows {
public:
  bool showPreferences() override;
  bool showLandingPopover(StatusItem&) override { return false; }
  void setActivationPolicy(ActivationPolicy) override {}
  void terminate() override;
};

} // namespace lb
