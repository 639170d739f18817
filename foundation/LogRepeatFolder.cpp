#include "foundation/LogRepeatFolder.h"

#include <algorithm>

namespace lb {

namespace {

// Enough for every line of a few seconds of ordinary logging; a flood of
// different lines goes through unfolded.
constexpr std::size_t remembered = 64;

bool same(const LogLine& a, const LogLine& b) {
  return a.line == b.line && a.file == b.file && a.area == b.area && a.message == b.message;
}

} // namespace

void LogRepeatFolder::close(std::list<Recent>::iterator recent, Date at, std::vector<LogLine>& out) {
  if (recent->repeats > 0) {
    auto summary = recent->first;
    summary.time = at;
    constexpr std::size_t quoted = 100;
    summary.message = "… repeated " + std::to_string(recent->repeats) + " times: " +
                      (summary.message.size() > quoted ? summary.message.substr(0, quoted) + "…" : summary.message);
    out.push_back(std::move(summary));
  }
  recent_.erase(recent);
}

std::vector<LogLine> LogRepeatFolder::take(const LogLine& line) {
  std::vector<LogLine> out;
  while (!recent_.empty() && timeBetween(recent_.front().first.time, line.time) >= window) {
    close(recent_.begin(), line.time, out);
  }
  auto found = std::find_if(recent_.begin(), recent_.end(),
                            [&](const Recent& recent) { return same(recent.first, line); });
  if (found != recent_.end()) {
    ++found->repeats;
    found->last = line.time;
    return out;
  }
  if (recent_.size() == remembered) close(recent_.begin(), line.time, out);
  recent_.push_back({line, 0, line.time});
  out.push_back(line);
  return out;
}

std::vector<LogLine> LogRepeatFolder::flush() {
  std::vector<LogLine> out;
  while (!recent_.empty()) close(recent_.begin(), recent_.front().last, out);
  return out;
}

} // namespace lb
