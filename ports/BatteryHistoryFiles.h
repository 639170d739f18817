#pragma once

#include "foundation/Result.h"

#include <optional>
#include <string>
#include <string_view>

namespace lb {

// Where each device's battery history is kept between runs: one text per
// device, by its canonical address. Called on worker threads, never twice
// at once for one device.
class BatteryHistoryFiles {
public:
  virtual ~BatteryHistoryFiles() = default;

  // The kept text; none when nothing is kept. A failure says why it could
  // not be read.
  virtual Result<std::optional<std::string>> read(const std::string& address) = 0;
  // Replaces the kept text all at once: after a crash it is the old or the
  // new, never a mix.
  virtual Result<> write(const std::string& address, std::string_view text) = 0;
  virtual Result<> remove(const std::string& address) = 0;
  // Moves a text that could not be understood out of the way, kept for the
  // user, so that the next write does not replace it. Says where it went.
  virtual Result<std::string> setAside(const std::string& address) = 0;
};

} // namespace lb
