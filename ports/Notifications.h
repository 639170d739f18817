#pragma once

#include "foundation/Result.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace lb {

// A message for the desktop's notification service to show.
struct Notification {
  std::string summary;
  std::string body;
  std::vector<unsigned char> png; // the picture; empty for the program's own
  bool critical = false;          // stays until the user dismisses it
};

// The desktop's notification service. Main thread.
class Notifications {
public:
  using Id = std::uint32_t;
  using Done = std::function<void(Result<Id>)>;

  virtual ~Notifications() = default;
  // Shows `notification` in place of the one shown as `replacing` (0: a new
  // one). `done` runs later on the main thread with its id, or why nothing
  // was shown.
  virtual void show(const Notification& notification, Id replacing, Done done) = 0;
};

} // namespace lb
