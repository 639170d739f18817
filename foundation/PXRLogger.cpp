#include "foundation/PXRLogger.h"

namespace lb {

std::atomic<std::shared_ptr<PXRLogger>> PXRLogger::shared_;

PXRLogger::PXRLogger(AreaSwitch areaSwitch) : areaSwitch_(std::move(areaSwitch)) {}

namespace {
std::mutex earlyMutex;
std::vector<LogLine> earlyLines;
} // namespace

std::shared_ptr<PXRLogger> PXRLogger::sharedLogger() { return shared_.load(); }

void PXRLogger::keepEarlyLine(LogLine line) {
  std::lock_guard lock(earlyMutex);
  if (earlyLines.size() < 100) earlyLines.push_back(std::move(line));
}

void PXRLogger::replayEarlyLines() {
  std::vector<LogLine> lines;
  {
    std::lock_guard lock(earlyMutex);
    lines.swap(earlyLines);
  }
  std::lock_guard lock(mutex_);
  for (const auto& line : lines) {
    for (const auto& sink : sinks_) sink->write(line);
  }
}

void PXRLogger::setSharedLogger(std::shared_ptr<PXRLogger> logger) { shared_.store(std::move(logger)); }

bool PXRLogger::isEnabledForArea(const std::optional<std::string>& area) const { return !area || areaSwitch_(*area); }

void PXRLogger::log(std::string_view file, unsigned line, std::string_view function,
                    const std::optional<std::string>& area, std::string message) {
  LogLine logLine{
      std::chrono::system_clock::now(), std::string(file), line, std::string(function), area, std::move(message)};
  std::lock_guard lock(mutex_);
  for (const auto& sink : sinks_) sink->write(logLine);
}

void PXRLogger::addSink(std::shared_ptr<LogSink> sink) {
  std::lock_guard lock(mutex_);
  sinks_.push_back(std::move(sink));
}

std::string PXRLogger::trimmedLog(std::string_view data, std::size_t keep) {
  const std::size_t excess = data.size() > keep ? data.size() - keep : 0;
  std::string kept;
  kept.reserve(data.size() - excess + 1);
  std::size_t dropped = 0;
  std::size_t start = 0;
  while (start < data.size()) {
    std::size_t end = data.find('\n', start);
    if (end == std::string_view::npos) end = data.size();
    std::string_view line = data.substr(start, end - start);
    start = end + 1;
    if (line.empty()) continue;
    if (dropped < excess) {
      dropped += line.size() + 1;
    } else {
      kept.append(line);
      kept += '\n';
    }
  }
  return kept;
}

} // namespace lb
