#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace lb {

// Which of a device's two scripts; the raw value ends its file's name.
enum class ScriptType { connected, disconnected };

inline constexpr std::array<ScriptType, 2> allScriptTypes{ScriptType::connected, ScriptType::disconnected};

inline std::string rawValue(ScriptType type) { return type == ScriptType::connected ? "connected" : "disconnected"; }

inline std::string pxrDescription(ScriptType type) { return rawValue(type); }

// "7.connected": the device ID in decimal, a full stop, the type.
inline std::string scriptFileName(std::int64_t deviceID, ScriptType type) {
  return std::to_string(deviceID) + "." + rawValue(type);
}

} // namespace lb
