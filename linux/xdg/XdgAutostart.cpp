#include "linux/xdg/XdgAutostart.h"

#include "foundation/PXRLog.h"
#include "foundation/AtomicFile.h"
#include "foundation/XdgDirectories.h"

#include <algorithm>

namespace lb {

std::filesystem::path XdgAutostart::defaultEntryFile() {
  return XdgDirectories::configHome() / "autostart" / "lanternbud.desktop";
}

// Exec takes a quoted argument, inside which \ " ` $ are escaped; the file's
// own string rules then double every backslash, and % stands for itself as %%.
std::string XdgAutostart::entry(const std::string& program) {
  std::string quoted = "\"";
  for (char c : program) {
    if (c == '\\' || c == '"' || c == '`' || c == '$') quoted += '\\';
    quoted += c;
  }
  quoted += '"';
  std::string exec;
  for (char c : quoted) {
    if (c == '\\') exec += "\\\\";
    else if (c == '%') exec += "%%";
    else exec += c;
  }
  std::string text;
  std::string_view rest = desktopEntry;
  while (!rest.empty()) {
    const auto end = std::min(rest.find('\n'), rest.size());
    const auto line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (!line.starts_with("Exec=")) {
      text.append(line).append("\n");
      continue;
    }
    text += "Exec=" + exec + "\n";
    text += "X-GNOME-Autostart-enabled=true\n";
  }
  return text;
}

Result<> XdgAutostart::setEnabled(bool enabled) {
  std::error_code error;
  if (!enabled) {
    std::filesystem::remove(entryFile_, error);
    if (error) return Failure{"removing " + entryFile_.string() + ": " + error.message()};
    return {};
  }
  std::filesystem::create_directories(entryFile_.parent_path(), error);
  if (error) return Failure{"creating " + entryFile_.parent_path().string() + ": " + error.message()};
  return AtomicFile::write(entryFile_, entry(program_), 0644);
}

} // namespace lb
