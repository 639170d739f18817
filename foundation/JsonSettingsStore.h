#pragma once

#include "foundation/SettingsStore.h"

#include <filesystem>
#include <mutex>

namespace lb {

// The user's settings in one JSON file, mode 0600, replaced atomically on
// every change. A file that cannot be read as settings is never overwritten:
// it is moved aside, the error channel says where, and the program starts
// from its defaults.
class JsonSettingsStore final : public SettingsStore {
public:
  explicit JsonSettingsStore(std::filesystem::path file);

  // $XDG_CONFIG_HOME/lanternbud/settings.json
  static std::filesystem::path defaultFile();

  std::optional<SettingsValue> value(const std::string& key) const override;
  void setValue(const std::string& key, SettingsValue value) override;
  void removeValue(const std::string& key) override;

  const std::filesystem::path& file() const { return file_; }

private:
  void load();
  void save(const SettingsValue::Dictionary& values) const;

  const std::filesystem::path file_;
  // Never held while logging to an area: the logger asks the settings which
  // areas are on.
  mutable std::mutex mutex_;
  SettingsValue::Dictionary values_;
};

} // namespace lb
