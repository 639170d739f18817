#pragma once

#include "foundation/SettingsValue.h"

#include <optional>
#include <string>

namespace lb {

// Where the user's settings persist. Reads may come from any thread. A
// change is kept at once; a failure to keep it is logged by the store, and
// the value stays in effect for this run.
class SettingsStore {
public:
  virtual ~SettingsStore() = default;
  virtual std::optional<SettingsValue> value(const std::string& key) const = 0;
  virtual void setValue(const std::string& key, SettingsValue value) = 0;
  virtual void removeValue(const std::string& key) = 0;
  // Why the last change stays in memory only; none when it was kept.
  virtual std::optional<std::string> saveProblem() const { return std::nullopt; }
};

} // namespace lb
