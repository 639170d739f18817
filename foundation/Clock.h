#pragma once

#include <chrono>

namespace lb {

// A point in wall-clock time, as dates are stored and compared.
using Date = std::chrono::system_clock::time_point;

// Seconds from `from` to `to`; negative when `to` lies before `from`.
inline double secondsBetween(Date from, Date to) {
  return std::chrono::duration<double>(to - from).count();
}

inline Date dateAdding(Date date, double seconds) {
  return date + std::chrono::duration_cast<Date::duration>(std::chrono::duration<double>(seconds));
}

// The wall clock, handed in rather than reached for, so that simulated time
// can stand in for it.
class Clock {
public:
  virtual ~Clock() = default;
  virtual Date now() const = 0;
};

} // namespace lb
