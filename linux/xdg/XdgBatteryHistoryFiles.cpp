#include "linux/xdg/XdgBatteryHistoryFiles.h"

#include "foundation/AtomicFile.h"
#include "foundation/XdgDirectories.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace lb {

XdgBatteryHistoryFiles::XdgBatteryHistoryFiles(std::filesystem::path folder) : folder_(std::move(folder)) {
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder_, error)) {
    if (AtomicFile::isTemporary(entry.path().filename().string())) std::filesystem::remove(entry.path(), error);
  }
}

std::filesystem::path XdgBatteryHistoryFiles::folderNamed(const std::string& name) {
  return XdgDirectories::stateHome() / "lanternbud" / name;
}

std::filesystem::path XdgBatteryHistoryFiles::fileOf(const std::string& address) const {
  auto compact = address;
  std::erase(compact, ':');
  return folder_ / (compact + ".json");
}

Result<std::optional<std::string>> XdgBatteryHistoryFiles::read(const std::string& address) {
  const auto file = fileOf(address);
  std::error_code error;
  if (!std::filesystem::exists(std::filesystem::symlink_status(file, error))) return std::optional<std::string>();
  auto text = AtomicFile::read(file);
  if (!text) return Failure{file.string() + ": " + text.failure().reason};
  return std::optional(text.value());
}

Result<> XdgBatteryHistoryFiles::write(const std::string& address, std::string_view text) {
  if (auto error = XdgDirectories::makePrivateFolder(folder_))
    return Failure{"creating " + folder_.string() + " failed (" + error.message() + ")"};
  auto written = AtomicFile::write(fileOf(address), text, 0600);
  if (!written) return Failure{"writing " + fileOf(address).string() + " failed (" + written.failure().reason + ")"};
  return {};
}

Result<> XdgBatteryHistoryFiles::remove(const std::string& address) {
  std::error_code error;
  std::filesystem::remove(fileOf(address), error);
  if (error) return Failure{"removing " + fileOf(address).string() + " failed (" + error.message() + ")"};
  return {};
}

// Beside the file, never over another one kept aside before.
Result<std::string> XdgBatteryHistoryFiles::setAside(const std::string& address) {
  const auto file = fileOf(address);
  for (int n = 1; n < 100; ++n) {
    const auto aside = file.string() + ".unreadable" + (n == 1 ? "" : "-" + std::to_string(n));
    if (::renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0) return aside;
    if (errno != EEXIST) return Failure{std::strerror(errno)};
  }
  return Failure{"too many files were set aside"};
}

} // namespace lb
