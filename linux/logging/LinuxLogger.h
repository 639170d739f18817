#pragma once

#include "foundation/PXRLogger.h"

#include <memory>
#include <string>

namespace lb {

// Sets up logging for a Linux process: a shared logger whose areas follow
// `areaSwitch`, writing to the journal when one listens, to the process's
// own log file, and to a terminal on standard error. None is required;
// logging goes on with what there is, and a missing log file is said once.
struct LinuxLogger {
  static std::shared_ptr<PXRLogger> install(PXRLogger::AreaSwitch areaSwitch, const std::string& processName);
};

} // namespace lb
