#pragma once

#include "ports/LoginItems.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace lb {

// Start at login as desktops do it: an entry in $XDG_CONFIG_HOME/autostart
// that starts the program. Enabling writes the entry, disabling removes it.
// The entry is the installed desktop entry, so that the session shows the
// program by the same name and icon, but it starts the program that wrote
// it, wherever that is.
class XdgAutostart final : public LoginItems {
public:
  XdgAutostart(std::filesystem::path entryFile, std::string program)
      : entryFile_(std::move(entryFile)), program_(std::move(program)) {}

  static std::filesystem::path defaultEntryFile();

  Result<> setEnabled(bool enabled) override;

  // The entry's text for a program at `program`.
  static std::string entry(const std::string& program);

  // The installed desktop entry's text.
  static const std::string_view desktopEntry;

private:
  std::filesystem::path entryFile_;
  std::string program_;
};

} // namespace lb
