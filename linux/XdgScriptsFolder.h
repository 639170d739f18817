#pragma once

#include "ports/ScriptsFolder.h"

#include <filesystem>

namespace lb {

// The user's scripts folder, $XDG_DATA_HOME/lanternbud/Scripts.
class XdgScriptsFolder final : public ScriptsFolder {
public:
  explicit XdgScriptsFolder(std::filesystem::path folder) : folder_(std::move(folder)) {}
  static std::filesystem::path defaultFolder();

  std::optional<std::string> location() const override { return folder_.string(); }
  std::optional<std::string> read(const std::string& fileName) const override;
  bool remove(const std::string& fileName) override;

private:
  std::filesystem::path folder_;
};

} // namespace lb
