#include "linux/logging/TerminalLogSink.h"

#include <unistd.h>

namespace lb {

TerminalLogSink::~TerminalLogSink() {
  for (const auto& summary : repeats_.flush()) print(summary);
}

void TerminalLogSink::write(const LogLine& line) {
  for (const auto& kept : repeats_.take(line)) print(kept);
}

void TerminalLogSink::print(const LogLine& line) {
  const std::string text = "[" + line.area.value_or("Error") + "] " + line.message + "\n";
  [[maybe_unused]] auto written = ::write(STDERR_FILENO, text.data(), text.size());
}

} // namespace lb
