#pragma once

#include "foundation/LogSink.h"

namespace lb {

// Log lines for a person at a terminal: "[LogConnect] message" on standard
// error, without the source locations the journal and the file keep.
class TerminalLogSink final : public LogSink {
public:
  void write(const LogLine& line) override;
};

} // namespace lb
