#pragma once

#include "ports/Windows.h"

namespace lb {

// Windows until the preferences window exists: it cannot be shown, and a
// termination request ends Qt's event loop.
class HeadlessWindows final : public Windows {
public:
  bool showPreferences() override;
  // The welcome is a message from the first item, which most trays show as
  // a desktop notification.
  bool showLandingPopover(StatusItem& item) override;
  void setActivationPolicy(ActivationPolicy) override {}
  void terminate() override;
};

} // namespace lb
