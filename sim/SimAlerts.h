#pragma once

#include "ports/Alerts.h"

#include <vector>

namespace lb {

// Alerts answered by the test: each records what it showed and answers
// with `answer`.
class SimAlerts final : public Alerts {
public:
  std::size_t runModal(const Alert& alert) override {
    shown.push_back(alert);
    return answer;
  }
  void openHelpPage(const std::string& page) override { helpPagesOpened.push_back(page); }

  std::size_t answer = 0;
  std::vector<Alert> shown;
  std::vector<std::string> helpPagesOpened;
};

} // namespace lb
