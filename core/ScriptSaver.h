#pragma once

#include "core/ScriptType.h"
#include "core/UserDefaults.h"
#include "foundation/Result.h"
#include "ports/ScriptsFolder.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace lb {

// A device's script files in the scripts folder, and write access to it:
// asked for once, remembered under "scriptFolderURL", reused silently.
class ScriptSaver {
public:
  ScriptSaver(ScriptsFolder& folder, UserDefaults& defaults) : folder_(folder), defaults_(defaults) {}

  // Replaces the script file with `text` (line breaks made line feeds), or
  // removes it when the text is absent or empty. May ask the user for
  // access; fails without it, or with the file system's failure.
  Result<> saveScript(std::int64_t deviceID, ScriptType type, const std::optional<std::string>& text);

  // Removes the script file where no grant is needed or the remembered
  // one allows; never asks, never fails.
  void cleanUp(std::int64_t deviceID, ScriptType type);

  // "\r\n" and "\r" become "\n".
  static std::string normalizingLineBreaks(const std::string& text);

private:
  using Completion = std::function<void(const std::optional<std::string>& folder)>;
  void withWritableScriptFolder(bool ask, const Completion& completion);
  // The folder, and whether access was granted on the way.
  Result<std::pair<std::string, bool>> ensureScriptsFolder();
  bool promptForAccess(const std::string& location, const std::string& message);

  ScriptsFolder& folder_;
  UserDefaults& defaults_;
};

} // namespace lb
