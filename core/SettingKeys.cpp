#include "core/SettingKeys.h"

#include "core/DeviceSettingManager.h"
#include "core/LogAreas.h"
#include "core/Tunables.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace lb {

namespace {

constexpr std::string_view options[] = {"launchAtLogin",   "hideDockIcon", "currentSettingVersion",
                                        "scriptFolderURL", "devices",      DeviceSettingManager::unreadableDevicesKey};
constexpr std::string_view shortcutPrefixes[] = {SettingKeys::shortcutPrefix, "shortcutForDevice"};

// Edits (insert, delete, replace) between two keys, ignoring letter case.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool same = std::tolower(static_cast<unsigned char>(a[i - 1])) ==
                        std::tolower(static_cast<unsigned char>(b[j - 1]));
      const std::size_t next = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (same ? 0 : 1)});
      diagonal = row[j];
      row[j] = next;
    }
  }
  return row[b.size()];
}

} // namespace

std::vector<std::string_view> SettingKeys::all() {
  std::vector<std::string_view> keys(std::begin(options), std::end(options));
  keys.insert(keys.end(), std::begin(allLogAreaNames), std::end(allLogAreaNames));
  for (const auto& [key, known] : tunable::known()) keys.push_back(key);
  return keys;
}

bool SettingKeys::isKnown(std::string_view key) {
  for (auto prefix : shortcutPrefixes) {
    if (key.starts_with(prefix) && key.size() > prefix.size() &&
        std::all_of(key.begin() + static_cast<std::ptrdiff_t>(prefix.size()), key.end(),
                    [](char c) { return std::isdigit(static_cast<unsigned char>(c)); })) {
      return true;
    }
  }
  const auto keys = all();
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

std::optional<std::string> SettingKeys::nearest(std::string_view key) {
  std::optional<std::string> best;
  std::size_t bestDistance = std::max<std::size_t>(2, key.size() / 4) + 1;
  for (auto known : all()) {
    if (auto d = distance(key, known); d < bestDistance) {
      bestDistance = d;
      best = std::string(known);
    }
  }
  return best;
}

} // namespace lb
