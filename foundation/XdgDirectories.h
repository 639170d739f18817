#pragma once

#include <filesystem>

namespace lb {

// The user's base directories, as the XDG Base Directory rules give them:
// the variable when it holds an absolute path, else the usual place in HOME.
struct XdgDirectories {
  static std::filesystem::path configHome(); // settings
  static std::filesystem::path stateHome();  // log files
  static std::filesystem::path dataHome();   // scripts
  static std::filesystem::path home();
};

} // namespace lb
