#include "linux/logging/TerminalLogSink.h"

#include <unistd.h>

namespace lb {

void TerminalLogSink::write(const LogLine& line) {
  const std::string text = "[" + line.area.value_or("Error") + "] " + line.message + "\n";
  [[maybe_unused]] auto written = ::write(STDERR_FILENO, text.data(), text.size());
}

} // namespace lb
