#pragma once

#include "ports/LoginItems.h"

#include <vector>

namespace lb {

class SimLoginItems final : public LoginItems {
public:
  Result<> setEnabled(bool wanted) override {
    requests.push_back(wanted);
    if (!accepts) return Failure{"simulated refusal"};
    enabled = wanted;
    return {};
  }

  // The world's side.
  bool accepts = true;
  bool enabled = false;
  std::vector<bool> requests;
};

} // namespace lb
