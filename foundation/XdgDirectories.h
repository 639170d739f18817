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

  // Makes `folder` (and its parents) when it is missing, readable by the
  // user alone: settings and histories say what the user runs and uses. A
  // folder that exists is left as the user set it.
  static std::error_code makePrivateFolder(const std::filesystem::path& folder);
};

} // namespace lb
