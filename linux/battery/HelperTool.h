#pragma once

#include "foundation/SettingsValue.h"

#include <string>

namespace lb {

// The battery helper tool: this program under the name LanternbudHelperTool,
// run in its print mode.
class HelperTool {
public:
  explicit HelperTool(std::string path) : path_(std::move(path)) {}

  // Runs "<path> -PrintBatteryInfo <address>" to its end (10 s at most) and
  // parses what it printed; throws when it cannot run or printed no
  // property list.
  SettingsValue run(const std::string& address) const;

private:
  std::string path_;
};

} // namespace lb
