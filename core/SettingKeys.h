#pragma once

#include "foundation/SettingsValue.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lb {

// The keys of the program's own options, each named here only; the
// tunables and the log areas have theirs in their tables.
namespace settingKey {
inline constexpr const char* launchAtLogin = "launchAtLogin";
inline constexpr const char* hideDockIcon = "hideDockIcon";
inline constexpr const char* currentSettingVersion = "currentSettingVersion";
inline constexpr const char* scriptFolderURL = "scriptFolderURL"; // the scripts folder's grant
inline constexpr const char* devices = "devices";                 // the registry's list
} // namespace settingKey

// The settings the program reads: every tunable, every log area, the
// options of the program (settingKey::) and the devices' shortcut keys. A
// key outside them does nothing, so a client that sets one has most likely
// mistyped it.
struct SettingKeys {
  static bool isKnown(std::string_view key);
  // Why `value` cannot be what `key` holds: its type, or its range, from the
  // one table of keys. None when it fits, or when `key` is not in the table.
  static std::optional<std::string> problem(std::string_view key, const SettingsValue& value);
  // Why `key` names no setting (empty, too long, or unknown, with the key it
  // is likely a misspelling of); none when it is known.
  static std::optional<std::string> whyUnknown(std::string_view key);
  // Refuses a name longer than any key at once, before any work on it.
  static std::optional<std::string> tooLong(std::string_view key);
  // The known key that `key` is likely a misspelling of, if one is close.
  static std::optional<std::string> nearest(std::string_view key);
  static constexpr std::size_t maximumLength = 256;
  // Every key of fixed name; the shortcuts' keys are this prefix and a
  // device's ID.
  static std::vector<std::string_view> all();
  static constexpr std::string_view shortcutPrefix = "shortcutDictForDevice";
  // The same, as an older version wrote it; removed with its device.
  static constexpr std::string_view oldShortcutPrefix = "shortcutForDevice";
  static std::string shortcutKey(std::int64_t deviceID) {
    return std::string(shortcutPrefix) + std::to_string(deviceID);
  }
  static std::string oldShortcutKey(std::int64_t deviceID) {
    return std::string(oldShortcutPrefix) + std::to_string(deviceID);
  }
  // Device lists that could not be read are kept under this prefix and the
  // time they were found.
  static constexpr std::string_view unreadableDevicesPrefix = "devices.unreadable-";
};

} // namespace lb
