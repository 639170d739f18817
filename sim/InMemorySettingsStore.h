#pragma once

#include "foundation/SettingsStore.h"

#include <mutex>
#include <optional>

namespace lb {

class InMemorySettingsStore final : public SettingsStore {
public:
  explicit InMemorySettingsStore(SettingsValue::Dictionary values = {}) : values_(std::move(values)) {}

  std::optional<SettingsValue> value(const std::string& key) const override {
    std::lock_guard lock(mutex_);
    auto found = values_.find(key);
    if (found == values_.end()) return std::nullopt;
    return found->second;
  }

  void setValue(const std::string& key, SettingsValue value) override {
    std::lock_guard lock(mutex_);
    values_.insert_or_assign(key, std::move(value));
  }

  void removeValue(const std::string& key) override {
    std::lock_guard lock(mutex_);
    values_.erase(key);
  }

  std::optional<std::string> saveProblem() const override {
    std::lock_guard lock(mutex_);
    return unwritable;
  }

  // The world's side: while set, every change stays in memory only, and
  // this is why.
  std::optional<std::string> unwritable;

private:
  mutable std::mutex mutex_;
  SettingsValue::Dictionary values_;
};

} // namespace lb
