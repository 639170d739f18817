#pragma once

#include "foundation/Clock.h"

#include <optional>
#include <string>

namespace lb {

struct LogLine {
  Date time;
  std::string file;
  unsigned line;
  std::string function;
  std::optional<std::string> area; // absent on the error channel
  std::string message;
};

// Somewhere log lines go: the journal, a file. The logger serialises calls.
class LogSink {
public:
  virtual ~LogSink() = default;
  virtual void write(const LogLine& line) = 0;
};

} // namespace lb
