#pragma once

#include "ports/BatteryHistoryFiles.h"

#include <map>
#include <mutex>

namespace lb {

// History files in memory, for any thread.
class SimBatteryHistoryFiles final : public BatteryHistoryFiles {
public:
  Result<std::optional<std::string>> read(const std::string& address) override {
    std::lock_guard lock(mutex_);
    auto found = texts_.find(address);
    return found == texts_.end() ? std::nullopt : std::optional(found->second);
  }
  Result<> write(const std::string& address, std::string_view text) override {
    std::lock_guard lock(mutex_);
    texts_.insert_or_assign(address, std::string(text));
    return {};
  }
  Result<> remove(const std::string& address) override {
    std::lock_guard lock(mutex_);
    texts_.erase(address);
    return {};
  }
  Result<std::string> setAside(const std::string& address) override {
    std::lock_guard lock(mutex_);
    auto found = texts_.extract(address);
    if (!found) return Failure{"nothing to set aside"};
    texts_.insert_or_assign(address + ".unreadable", std::move(found.mapped()));
    return address + ".unreadable";
  }

private:
  std::mutex mutex_;
  std::map<std::string, std::string> texts_;
};

} // namespace lb
