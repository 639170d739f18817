#pragma once

#include "ports/Windows.h"

#include <optional>
#include <vector>

namespace lb {

// Windows that record what they were asked to show.
class SimWindows final : public Windows {
public:
  bool showPreferences(std::optional<std::int64_t> deviceID) override {
    if (canShowPreferences) ++preferencesShown;
    preferencesDevice = deviceID;
    return canShowPreferences;
  }
  bool showLandingPopover(StatusItem& item) override {
    landingShownUnder.push_back(&item);
    return true;
  }
  void setActivationPolicy(ActivationPolicy policy) override { activationPolicy = policy; }
  void terminate() override { terminationRequested = true; }

  // The world's side.
  bool canShowPreferences = true;
  int preferencesShown = 0;
  std::optional<std::int64_t> preferencesDevice; // the device asked for last
  std::vector<const StatusItem*> landingShownUnder;
  std::optional<ActivationPolicy> activationPolicy; // none: never set
  bool terminationRequested = false;
};

} // namespace lb
