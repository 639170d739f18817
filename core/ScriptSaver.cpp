#include "core/ScriptSaver.h"

#include "core/LogAreas.h"

namespace lb {

void ScriptSaver::cleanUp(std::int64_t deviceID, ScriptType type) {
  auto name = scriptFileName(deviceID, type);
  if (folder_.remove(name)) PXR_LOG(scriptSaveLog(), "Cleaning up URL", folder_.location().value_or("") + "/" + name);
}

} // namespace lb
