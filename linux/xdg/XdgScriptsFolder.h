#pragma once

#include "ports/ScriptsFolder.h"

#include <filesystem>

namespace lb {

// The user's scripts folder, $XDG_DATA_HOME/lanternbud/Scripts, mode 0700.
// It is the user's own: access needs no question, and a grant is the
// folder's path, usable while it names this folder.
class XdgScriptsFolder final : public ScriptsFolder {
public:
  explicit XdgScriptsFolder(std::filesystem::path folder) : folder_(std::move(folder)) {}
  static std::filesystem::path defaultFolder();

  std::optional<std::string> location() const override { return folder_.string(); }
  std::string parentLocation() const override { return folder_.parent_path().string(); }
  bool exists() const override;
  Result<> create() override;
  bool needsGrant() const override { return false; }
  bool promptForAccess(const std::string&, const std::string&) override { return true; }
  std::optional<SettingsValue::Data> bookmark(const std::string& location) override;
  std::optional<std::string> resolveBookmark(const SettingsValue::Data& bookmark) override;
  bool startAccessing(const std::string& location) override;
  void stopAccessing(const std::string&) override {}

  std::optional<std::string> read(const std::string& fileName) const override;
  bool fileExists(const std::string& fileName) const override;
  Result<> remove(const std::string& fileName) override;
  Result<> write(const std::string& fileName, const std::string& text) override;

private:
  std::filesystem::path folder_;
};

} // namespace lb
