#include "linux/logging/LinuxLogger.h"

#include "foundation/PXRLog.h"
#include "linux/logging/JournalLogSink.h"
#include "linux/logging/OurLogFile.h"
#include "linux/logging/TerminalLogSink.h"

#include <iostream>
#include <unistd.h>

namespace lb {

std::shared_ptr<PXRLogger> LinuxLogger::install(PXRLogger::AreaSwitch areaSwitch, const std::string& processName) {
  auto logger = std::make_shared<PXRLogger>(std::move(areaSwitch));
  if (auto journal = JournalLogSink::ifReachable(processName)) logger->addSink(std::move(journal));
  if (::isatty(STDERR_FILENO)) logger->addSink(std::make_shared<TerminalLogSink>());
  PXRLogger::setSharedLogger(logger);
  std::string error;
  const bool hasFile = OurLogFile::enable(*logger, processName, error);
  logger->replayEarlyLines();
  if (!hasFile) {
    // Said once, where someone looks: the journal, and standard error even
    // when it is no terminal (a session's own log).
    const auto message = "No log file is written (" + error + "); the journal has every line (journalctl -t " +
                         processName + ").";
    PXR_LOG_ERROR(message);
    if (!::isatty(STDERR_FILENO)) std::cerr << processName << ": " << message << std::endl;
  }
  return logger;
}

} // namespace lb
