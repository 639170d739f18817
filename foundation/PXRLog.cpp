#include "foundation/PXRLog.h"

#include "foundation/PXRLogger.h"

namespace lb {

const PXRLog& PXRLog::error() {
  static const PXRLog channel(std::nullopt);
  return channel;
}

bool PXRLog::isEnabled() const {
  if (disabled_) return false;
  auto logger = PXRLogger::sharedLogger();
  return logger && logger->isEnabledForArea(area_);
}

// Every line is one line, whatever its text took in from outside.
void PXRLog::write(std::string message, std::source_location site) const {
  if (disabled_) return;
  message = pxrPrintable(message);
  if (auto logger = PXRLogger::sharedLogger()) {
    logger->log(site.file_name(), site.line(), site.function_name(), area_, std::move(message));
  } else if (!area_) {
    PXRLogger::keepEarlyLine({std::chrono::system_clock::now(), site.file_name(), site.line(), site.function_name(),
                              area_, std::move(message)});
  }
}

} // namespace lb
