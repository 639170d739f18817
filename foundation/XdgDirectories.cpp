#include "foundation/XdgDirectories.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace lb {

namespace {

std::filesystem::path fromEnvironment(const char* variable, const char* fallbackInHome) {
  if (const char* value = std::getenv(variable); value && value[0] == '/') return value;
  return XdgDirectories::home() / fallbackInHome;
}

} // namespace

std::error_code XdgDirectories::makePrivateFolder(const std::filesystem::path& folder) {
  std::error_code error;
  if (std::filesystem::exists(folder, error)) return error;
  std::filesystem::create_directories(folder, error);
  if (!error) std::filesystem::permissions(folder, std::filesystem::perms::owner_all, error);
  return error;
}

std::filesystem::path XdgDirectories::home() {
  if (const char* value = std::getenv("HOME"); value && value[0] == '/') return value;
  if (const passwd* entry = getpwuid(getuid()); entry && entry->pw_dir) return entry->pw_dir;
  return "/";
}

std::filesystem::path XdgDirectories::configHome() { return fromEnvironment("XDG_CONFIG_HOME", ".config"); }
std::filesystem::path XdgDirectories::stateHome() { return fromEnvironment("XDG_STATE_HOME", ".local/state"); }
std::filesystem::path XdgDirectories::dataHome() { return fromEnvironment("XDG_DATA_HOME", ".local/share"); }

} // namespace lb
