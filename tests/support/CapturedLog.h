#pragma once

#include "foundation/PXRLogger.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace lb::test {

// Installs a shared logger that keeps its lines in memory, with the given
// areas switched on, and puts the one it replaced back at the end of the test.
class CapturedLog {
public:
  explicit CapturedLog(std::set<std::string> areasOn = {})
      : areasOn_(std::move(areasOn)), sink_(std::make_shared<Sink>()), replaced_(PXRLogger::sharedLogger()) {
    auto logger = std::make_shared<PXRLogger>([this](const std::string& area) { return areasOn_.contains(area); });
    logger->addSink(sink_);
    PXRLogger::setSharedLogger(logger);
  }
  ~CapturedLog() { PXRLogger::setSharedLogger(replaced_); }

  std::vector<LogLine> lines() const {
    std::lock_guard lock(sink_->mutex);
    return sink_->lines;
  }

  std::vector<std::string> messages() const {
    std::vector<std::string> result;
    for (const auto& line : lines()) result.push_back(line.message);
    return result;
  }

  bool contains(const std::string& text) const {
    auto all = messages();
    return std::any_of(all.begin(), all.end(),
                       [&](const std::string& message) { return message.find(text) != std::string::npos; });
  }

private:
  struct Sink : LogSink {
    std::mutex mutex;
    std::vector<LogLine> lines;
    void write(const LogLine& line) override {
      std::lock_guard lock(mutex);
      lines.push_back(line);
    }
  };

  std::set<std::string> areasOn_;
  std::shared_ptr<Sink> sink_;
  std::shared_ptr<PXRLogger> replaced_;
};

} // namespace lb::test
