#pragma once

#include "ports/Alerts.h"

#include <filesystem>
#include <vector>

namespace lb {

// Alerts as dialogs. Each waits for its answer in an event loop of its own,
// so the tray items keep answering meanwhile. Help pages open in the user's
// browser, from the first folder that has them.
class DialogAlerts final : public Alerts {
public:
  explicit DialogAlerts(std::vector<std::filesystem::path> helpFolders) : helpFolders_(std::move(helpFolders)) {}

  std::size_t runModal(const Alert& alert) override;
  void openHelpPage(const std::string& page) override;

private:
  std::vector<std::filesystem::path> helpFolders_;
};

} // namespace lb
