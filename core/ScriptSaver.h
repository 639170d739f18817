#pragma once

#include "core/ScriptType.h"
#include "ports/ScriptsFolder.h"

#include <cstdint>

namespace lb {

// A device's script files in the scripts folder.
class ScriptSaver {
public:
  explicit ScriptSaver(ScriptsFolder& folder) : folder_(folder) {}

  // Removes the device's script of that type if there is one; never fails
  // and never asks the user.
  void cleanUp(std::int64_t deviceID, ScriptType type);

private:
  ScriptsFolder& folder_;
};

} // namespace lb
