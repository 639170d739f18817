#pragma once

#include "core/LogAreas.h"
#include "ports/Alerts.h"

namespace lb {

// Alerts until there are dialogs: each is logged and answered with its
// default button, and a help page is named by its file.
class LoggingAlerts final : public Alerts {
public:
  explicit LoggingAlerts(std::string helpFolder) : helpFolder_(std::move(helpFolder)) {}

  std::size_t runModal(const Alert& alert) override {
    PXR_LOG_ERROR("Alert:", alert.message, alert.informativeText);
    return 0;
  }
  void openHelpPage(const std::string& page) override {
    PXR_LOG(trayLog(), "Help:", helpFolder_ + "/" + page + ".html");
  }

private:
  std::string helpFolder_;
};

} // namespace lb
