#pragma once

#include "foundation/LogSink.h"

#include <filesystem>
#include <memory>
#include <string>

namespace lb {

// Appends each log line to a file with a single write, so lines stay whole
// even with other writers on the file.
class LogFileSink final : public LogSink {
public:
  // Opens the file for appending, creating it (and its folder) when needed.
  // A file that already holds the logger's limit or more is trimmed first.
  // Nothing, with `error` set, when the file cannot be used.
  static std::shared_ptr<LogFileSink> open(const std::filesystem::path& path, std::string& error);

  ~LogFileSink() override;
  LogFileSink(const LogFileSink&) = delete;
  LogFileSink& operator=(const LogFileSink&) = delete;

  void write(const LogLine& line) override;

  // "2026-11-22 23:59:01.123 [LogConnect] core/DeviceSetting.cpp:42 function: message"
  static std::string format(const LogLine& line);

private:
  explicit LogFileSink(int descriptor) : descriptor_(descriptor) {}
  int descriptor_;
};

} // namespace lb
