#include "linux/LinuxLogger.h"

#include "linux/JournalLogSink.h"
#include "linux/OurLogFile.h"

namespace lb {

std::shared_ptr<PXRLogger> LinuxLogger::install(PXRLogger::AreaSwitch areaSwitch, const std::string& processName) {
  auto logger = std::make_shared<PXRLogger>(std::move(areaSwitch));
  if (auto journal = JournalLogSink::ifReachable(processName)) logger->addSink(std::move(journal));
  PXRLogger::setSharedLogger(logger);
  std::string ignored; // without a file the journal still has every line
  OurLogFile::enable(*logger, processName, ignored);
  return logger;
}

} // namespace lb
