#pragma once

#include <atomic>

namespace lb {

// Thrown out of a report's work once the user has cancelled it: whatever
// was begun is undone on the way out.
struct ReportCancelled {};

inline void throwIfCancelled(const std::atomic<bool>& cancelled) {
  if (cancelled.load()) throw ReportCancelled{};
}

} // namespace lb
