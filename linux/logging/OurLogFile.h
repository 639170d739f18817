#pragma once

#include "foundation/PXRLogger.h"

#include <filesystem>
#include <string>

namespace lb {

// The process's own log file: "<process name> App Log.log" in
// $XDG_STATE_HOME/lanternbud, which the diagnostic report collects.
struct OurLogFile {
  static std::filesystem::path path(const std::string& processName);

  // Attaches the file to `logger`, trimming it first if it has grown to the
  // limit. False, with `error` set, when the file cannot be used; logging
  // goes on without it.
  static bool enable(PXRLogger& logger, const std::string& processName, std::string& error);
};

} // namespace lb
