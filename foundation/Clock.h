#pragma once

#include <chrono>

namespace lb {

// A point in wall-clock time, as dates are stored and compared.
using Date = std::chrono::system_clock::time_point;
// Every duration the program keeps: delays, intervals, time-outs. Settings
// give them as numbers of seconds, converted once where they are read.
using Seconds = std::chrono::duration<double>;

// From `from` to `to`; negative when `to` lies before `from`.
inline Seconds timeBetween(Date from, Date to) { return to - from; }

inline Date dateAdding(Date date, Seconds duration) {
  return date + std::chrono::duration_cast<Date::duration>(duration);
}

// The wall clock, handed in rather than reached for, so that simulated time
// can stand in for it.
class Clock {
public:
  virtual ~Clock() = default;
  virtual Date now() const = 0;
};

} // namespace lb
