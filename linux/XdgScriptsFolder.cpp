#include "linux/XdgScriptsFolder.h"

#include "linux/AtomicFile.h"
#include "linux/XdgDirectories.h"

namespace lb {

std::filesystem::path XdgScriptsFolder::defaultFolder() {
  return XdgDirectories::dataHome() / "lanternbud" / "Scripts";
}

std::optional<std::string> XdgScriptsFolder::read(const std::string& fileName) const {
  std::string ignored; // a missing script is the usual case
  return AtomicFile::read(folder_ / fileName, ignored);
}

bool XdgScriptsFolder::remove(const std::string& fileName) {
  std::error_code error;
  return std::filesystem::remove(folder_ / fileName, error);
}

} // namespace lb
