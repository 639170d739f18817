#pragma once

#include "foundation/LogRepeatFolder.h"
#include "foundation/LogSink.h"

namespace lb {

// Log lines for a person at a terminal: "[LogConnect] message" on standard
// error, without the source locations the journal and the file keep. A line
// met again within seconds is folded.
class TerminalLogSink final : public LogSink {
public:
  ~TerminalLogSink() override;
  void write(const LogLine& line) override;

private:
  static void print(const LogLine& line);
  LogRepeatFolder repeats_;
};

} // namespace lb
