#include "core/DeviceScripts.h"

#include "core/LogAreas.h"

namespace lb {

void DeviceScripts::load() {
  for (auto type : allScriptTypes) {
    if (auto text = folder_.read(scriptFileName(options_.deviceID(), type))) {
      options_.set(rawValue(type), *text);
    } else {
      options_.remove(rawValue(type));
    }
  }
}

std::string DeviceScripts::text(ScriptType type) const {
  return options_.option<std::string>(rawValue(type), defaultScript);
}

void DeviceScripts::setText(ScriptType type, const std::optional<std::string>& text) {
  if (text) options_.set(rawValue(type), *text);
  else options_.remove(rawValue(type));
}

void DeviceScripts::run(ScriptType type) {
  if (!options_.runsScript(type)) {
    PXR_LOG(scriptLog(), "Script type not enabled: " + rawValue(type));
    return;
  }
  const auto id = options_.deviceID();
  auto folder = folder_.location();
  if (!folder) {
    PXR_LOG(scriptLog(), "No script URL for: " + std::to_string(id) + " " + rawValue(type));
    return;
  }
  const auto name = scriptFileName(id, type);
  const auto path = *folder + "/" + name;
  if (!folder_.fileExists(name)) {
    PXR_LOG(scriptLog(), "No script for: " + path);
    return;
  }
  const auto who = device_.description(); // the script may end after this device setting is gone
  scriptLog()([&] { return "Starting to run script " + who + ": " + path; });
  auto started = runner_.start(path, tunables_(tunable::ScriptTimeLimit),
                               [who, path](const ScriptRunner::Outcome& outcome) {
                                 if (outcome.success) {
                                   scriptLog()([&] { return "Successfully ran script " + who + ": " + path; });
                                 } else {
                                   PXR_LOG_ERROR("Error running script " + who + ": " + outcome.description);
                                 }
                               });
  if (!started) PXR_LOG_ERROR("Error creating script " + who + ": " + path + ": " + started.failure().reason + ".");
}

Result<> DeviceScripts::save() {
  for (auto type : allScriptTypes) {
    const auto key = rawValue(type);
    const auto edited = options_.value<std::string>(key);
    const auto id = options_.deviceID();
    const bool hasFolder = folder_.location().has_value();
    if (hasFolder && edited == folder_.read(scriptFileName(id, type))) continue;
    if (!hasFolder && !edited) continue;
    scriptSaveLog()([&] { return "Saving " + key + " for device " + device_.description(); });
    if (auto saved = saver_.saveScript(id, type, edited); !saved) return saved;
  }
  return {};
}

} // namespace lb
