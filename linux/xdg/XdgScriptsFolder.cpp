#include "linux/xdg/XdgScriptsFolder.h"

#include "foundation/AtomicFile.h"
#include "foundation/XdgDirectories.h"

namespace lb {

std::filesystem::path XdgScriptsFolder::defaultFolder() {
  return XdgDirectories::dataHome() / "lanternbud" / "Scripts";
}

bool XdgScriptsFolder::exists() const {
  std::error_code error;
  return std::filesystem::is_directory(folder_, error);
}

Result<> XdgScriptsFolder::create() {
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  if (!error) std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, error);
  if (error) return Failure{"creating " + folder_.string() + ": " + error.message()};
  return {};
}

std::optional<SettingsValue::Data> XdgScriptsFolder::bookmark(const std::string& location) {
  return SettingsValue::Data(location.begin(), location.end());
}

std::optional<std::string> XdgScriptsFolder::resolveBookmark(const SettingsValue::Data& bookmark) {
  std::string location(bookmark.begin(), bookmark.end());
  // A grant for another folder (XDG_DATA_HOME moved) is no grant for this one.
  if (location != folder_.string()) return std::nullopt;
  return location;
}

bool XdgScriptsFolder::startAccessing(const std::string& location) {
  std::error_code error;
  return std::filesystem::is_directory(location, error);
}

std::optional<std::string> XdgScriptsFolder::read(const std::string& fileName) const {
  // A missing script is the usual case, and no failure.
  auto text = AtomicFile::read(folder_ / fileName);
  if (!text) return std::nullopt;
  return text.value();
}

bool XdgScriptsFolder::fileExists(const std::string& fileName) const {
  std::error_code error;
  return std::filesystem::exists(folder_ / fileName, error);
}

Result<> XdgScriptsFolder::remove(const std::string& fileName) {
  std::error_code error;
  std::filesystem::remove(folder_ / fileName, error);
  if (error) return Failure{error.message()};
  return {};
}

Result<> XdgScriptsFolder::write(const std::string& fileName, const std::string& text) {
  return AtomicFile::write(folder_ / fileName, text, 0700);
}

} // namespace lb
