#pragma once

#include "foundation/LogSink.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace lb {

// The process-wide logger. It decides which areas are on and hands each line,
// whole, to its sinks; lines from many threads never interleave.
class PXRLogger {
public:
  // Whether the named area is switched on; asked on every log call.
  using AreaSwitch = std::function<bool(const std::string& area)>;

  explicit PXRLogger(AreaSwitch areaSwitch);

  static std::shared_ptr<PXRLogger> sharedLogger();
  static void setSharedLogger(std::shared_ptr<PXRLogger> logger);

  // The error channel (no area) is always on.
  bool isEnabledForArea(const std::optional<std::string>& area) const;

  void log(std::string_view file, unsigned line, std::string_view function, const std::optional<std::string>& area,
           std::string message);

  void addSink(std::shared_ptr<LogSink> sink);

  // Error lines written while no logger existed (the settings are read
  // before the logger can ask them which areas are on) wait, up to a
  // hundred, until the shared logger's sinks are in place and this is
  // called.
  static void keepEarlyLine(LogLine line);
  void replayEarlyLines();

  // A log file at least this large is trimmed when it is attached, and
  // while it is written.
  static constexpr std::size_t logFileLimit = 524'288;

  // Drops whole lines from the front until at least `size - keep` bytes are
  // gone. Empty lines vanish and every kept line ends in a line feed.
  static std::string trimmedLog(std::string_view data, std::size_t keep = logFileLimit);

private:
  AreaSwitch areaSwitch_;
  std::mutex mutex_;
  std::vector<std::shared_ptr<LogSink>> sinks_;
  static std::atomic<std::shared_ptr<PXRLogger>> shared_;
};

} // namespace lb
