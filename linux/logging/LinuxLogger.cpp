#include "linux/logging/LinuxLogger.h"

#include "linux/logging/JournalLogSink.h"
#include "linux/logging/OurLogFile.h"
#include "linux/logging/TerminalLogSink.h"

#include <unistd.h>

namespace lb {

std::shared_ptr<PXRLogger> LinuxLogger::install(PXRLogger::AreaSwitch areaSwitch, const std::string& processName) {
  auto logger = std::make_shared<PXRLogger>(std::move(areaSwitch));
  if (auto journal = JournalLogSink::ifReachable(processName)) logger->addSink(std::move(journal));
  if (::isatty(STDERR_FILENO)) logger->addSink(std::make_shared<TerminalLogSink>());
  PXRLogger::setSharedLogger(logger);
  std::string ignored; // without a file the journal still has every line
  OurLogFile::enable(*logger, processName, ignored);
  logger->replayEarlyLines();
  return logger;
}

} // namespace lb
