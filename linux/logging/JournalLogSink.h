#pragma once

#include "foundation/LogSink.h"

#include <memory>
#include <string>

namespace lb {

// Sends log lines to the systemd journal with their source location, the
// area (PXR_AREA) and the category PXR_CATEGORY=PXRLogger, by which the
// diagnostic report finds the program's own entries.
class JournalLogSink final : public LogSink {
public:
  static constexpr const char* socketPath = "/run/systemd/journal/socket";

  // A sink when a journal is listening, else nothing.
  static std::shared_ptr<JournalLogSink> ifReachable(std::string identifier);

  explicit JournalLogSink(std::string identifier) : identifier_(std::move(identifier)) {}
  void write(const LogLine& line) override;

private:
  std::string identifier_;
};

} // namespace lb
