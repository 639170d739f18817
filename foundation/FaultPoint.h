#pragma once

namespace lb {

// A place where a test can end the process as a crash or a power cut would,
// to see that what is on disk stays whole: when the environment variable
// "LANTERNBUD_FAULT_POINT" names `name`, the process ends there at once with
// status `faultPointStatus`, without unwinding or flushing anything.
void faultPoint(const char* name);

inline constexpr int faultPointStatus = 86;

} // namespace lb
