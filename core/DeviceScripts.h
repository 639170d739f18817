#pragma once

#include "core/DeviceHandle.h"
#include "core/DeviceOptions.h"
#include "core/Tunables.h"
#include "core/ScriptSaver.h"
#include "core/ScriptType.h"
#include "ports/ScriptRunner.h"
#include "ports/ScriptsFolder.h"

#include <optional>
#include <string>

namespace lb {

// A device's connect and disconnect scripts: their texts, kept in the
// options while edited, their files, and running them.
class DeviceScripts {
public:
  static constexpr const char* defaultScript = "#!/bin/sh\n";

  DeviceScripts(const DeviceHandle& device, DeviceOptions& options, ScriptsFolder& folder, ScriptRunner& runner,
                UserDefaults& defaults, const Tunables& tunables)
      : device_(device), options_(options), folder_(folder), runner_(runner), tunables_(tunables),
        saver_(folder, defaults) {}

  // The files are the truth about the scripts: whatever the saved options
  // say is replaced by the files' texts, or removed.
  void load();

  // The text; "#!/bin/sh\n" when there is none.
  std::string text(ScriptType type) const;
  // Absent removes the edited text.
  void setText(ScriptType type, const std::optional<std::string>& text);

  // Starts the script of that type if it is switched on and has a file; its
  // end is only logged.
  void run(ScriptType type);
  // Writes edited texts to their files; unchanged ones are left alone.
  // The first failure, the script's or the file system's, ends the save.
  Result<> save();

private:
  const DeviceHandle& device_;
  DeviceOptions& options_;
  ScriptsFolder& folder_;
  ScriptRunner& runner_;
  const Tunables& tunables_;
  ScriptSaver saver_;
};

} // namespace lb
