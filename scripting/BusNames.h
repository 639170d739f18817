#pragma once

// The names under which the running program answers on the session bus.
// Header-only and free of the program's logic, so that lanternbud-ctl and
// the tests can include it alone.
namespace lb::bus {

inline constexpr const char* serviceName = "org.lanternbud.Lanternbud";
inline constexpr const char* applicationPath = "/org/lanternbud/Lanternbud";
inline constexpr const char* applicationInterface = "org.lanternbud.Lanternbud";
inline constexpr const char* deviceRoot = "/org/lanternbud/Lanternbud/Device";
inline constexpr const char* deviceInterface = "org.lanternbud.Lanternbud.Device";
inline constexpr const char* errorPrefix = "org.lanternbud.Lanternbud.Error.";

} // namespace lb::bus
