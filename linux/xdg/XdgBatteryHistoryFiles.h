#pragma once

#include "ports/BatteryHistoryFiles.h"

#include <filesystem>

namespace lb {

// The battery histories as one JSON file per device in a folder of the
// user's state ("001B66A1B2C3.json"), mode 0600 in a folder of mode 0700,
// each replaced atomically. Temporary files that a crash left behind go
// when the folder is opened.
class XdgBatteryHistoryFiles final : public BatteryHistoryFiles {
public:
  explicit XdgBatteryHistoryFiles(std::filesystem::path folder);

  // $XDG_STATE_HOME/lanternbud/<name>
  static std::filesystem::path folderNamed(const std::string& name);

  Result<std::optional<std::string>> read(const std::string& address) override;
  Result<> write(const std::string& address, std::string_view text) override;
  Result<> remove(const std::string& address) override;
  Result<std::string> setAside(const std::string& address) override;

  std::filesystem::path fileOf(const std::string& address) const;

private:
  const std::filesystem::path folder_;
};

} // namespace lb
