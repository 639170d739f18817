#include "linux/logging/OurLogFile.h"

#include "linux/logging/LogFileSink.h"
#include "foundation/XdgDirectories.h"

namespace lb {

std::filesystem::path OurLogFile::path(const std::string& processName) {
  return XdgDirectories::stateHome() / "lanternbud" / (processName + " App Log.log");
}

bool OurLogFile::enable(PXRLogger& logger, const std::string& processName, std::string& error) {
  auto sink = LogFileSink::open(path(processName), error);
  if (!sink) return false;
  logger.addSink(std::move(sink));
  return true;
}

} // namespace lb
