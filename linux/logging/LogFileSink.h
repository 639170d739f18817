#pragma once

#include "foundation/LogRepeatFolder.h"
#include "foundation/LogSink.h"

#include <filesystem>
#include <memory>
#include <string>

namespace lb {

// Appends each log line to a file with a single write, so lines stay whole
// even with other writers on the file. The file never grows past the
// logger's limit: at the limit it is trimmed to three quarters of it, at
// once, and a line met again within seconds is folded.
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
  LogFileSink(std::filesystem::path path, int descriptor, std::uintmax_t size)
      : path_(std::move(path)), descriptor_(descriptor), size_(size) {}
  void append(const LogLine& line);
  void trim();

  std::filesystem::path path_;
  int descriptor_;
  std::uintmax_t size_;
  LogRepeatFolder repeats_;
};

} // namespace lb
