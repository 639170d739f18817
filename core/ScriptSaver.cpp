#include "core/ScriptSaver.h"

#include "core/AppIdentity.h"
#include "core/LogAreas.h"
#include "core/SettingKeys.h"
#include "core/Texts.h"

namespace lb {

namespace {
constexpr const char* bookmarkKey = settingKey::scriptFolderURL;
} // namespace

std::string ScriptSaver::normalizingLineBreaks(const std::string& text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r') {
      result += '\n';
      if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else {
      result += text[i];
    }
  }
  return result;
}

bool ScriptSaver::promptForAccess(const std::string& location, const std::string& message) {
  PXR_LOG(scriptSaveLog(), "Prompting for access to", location);
  return folder_.promptForAccess(location, message);
}

Result<std::pair<std::string, bool>> ScriptSaver::ensureScriptsFolder() {
  auto folder = folder_.location();
  if (!folder) return Failure{"the system has no place for a scripts folder"};
  if (folder_.exists()) {
    PXR_LOG(scriptSaveLog(), "Scripts folder already exists:", *folder);
    return std::pair{*folder, false};
  }
  auto parent = folder_.parentLocation();
  PXR_LOG(scriptSaveLog(), "Prompting for access to:", parent);
  if (!promptForAccess(
          parent, localized("Please select the User > Library > Application Scripts folder to save the scripts."))) {
    PXR_LOG(scriptSaveLog(), "Didn't get access to:", parent);
    if (auto created = folder_.create(); !created) return created.failure();
    return std::pair{*folder, false};
  }
  if (auto created = folder_.create(); !created) return created.failure();
  PXR_LOG(scriptSaveLog(), "Created:", *folder);
  return std::pair{*folder, true};
}

void ScriptSaver::withWritableScriptFolder(bool ask, const Completion& completion) {
  if (auto stored = defaults_.object(bookmarkKey); stored && stored->is<SettingsValue::Data>()) {
    auto resolved = folder_.resolveBookmark(*stored->as<SettingsValue::Data>());
    if (resolved && folder_.startAccessing(*resolved)) {
      PXR_LOG(scriptSaveLog(), "Accessing stored bookmark:", *resolved);
      struct StopAccessing {
        ScriptsFolder& folder;
        std::string location;
        ~StopAccessing() { folder.stopAccessing(location); }
      } stop{folder_, *resolved};
      completion(*resolved);
      return;
    }
  }
  if (!ask) {
    PXR_LOG(scriptSaveLog(), "No access and not set to ask");
    completion(std::nullopt);
    return;
  }
  auto ensured = ensureScriptsFolder();
  if (!ensured) {
    PXR_LOG_ERROR("Error getting script folder: " + ensured.failure().reason);
  } else {
    const auto& [folder, access] = ensured.value();
    PXR_LOG(scriptSaveLog(), "Access", access, "to folder", folder);
    bool granted = access ||
                   promptForAccess(folder, localized("Please select the User > Library > Application Scripts > ") +
                                               bundleIdentifier + localized(" folder to save the scripts."));
    auto bookmark = granted ? folder_.bookmark(folder) : std::nullopt;
    if (bookmark) {
      PXR_LOG(scriptSaveLog(), "Saving bookmark for", folder);
      defaults_.setValue(bookmarkKey, *bookmark);
      completion(folder);
      return;
    }
    if (granted) PXR_LOG_ERROR("Error getting script folder: could not remember access to " + folder);
  }
  PXR_LOG(scriptSaveLog(), "Never got access");
  completion(std::nullopt);
}

Result<> ScriptSaver::saveScript(std::int64_t deviceID, ScriptType type, const std::optional<std::string>& text) {
  Result<> outcome = Failure{"no permission to write to the scripts folder"};
  withWritableScriptFolder(true, [&](const std::optional<std::string>& folder) {
    PXR_LOG(scriptSaveLog(), "Received baseURL", folder);
    if (!folder) return;
    const auto name = scriptFileName(deviceID, type);
    const auto path = *folder + "/" + name;
    PXR_LOG(scriptSaveLog(), "Script URL is", path);
    if (folder_.fileExists(name)) {
      PXR_LOG(scriptSaveLog(), "Removing URL", path);
      if (auto removed = folder_.remove(name); !removed) {
        outcome = Failure{"removing " + path + ": " + removed.failure().reason};
        return;
      }
    }
    outcome = {};
    if (!text || text->empty()) return;
    PXR_LOG(scriptSaveLog(), "Writing to URL", path);
    if (auto written = folder_.write(name, normalizingLineBreaks(*text)); !written) {
      outcome = Failure{"writing " + path + ": " + written.failure().reason};
    }
  });
  return outcome;
}

// A script left behind would run for the next device given the same ID, so
// without a sandbox the files go without a grant.
void ScriptSaver::cleanUp(std::int64_t deviceID, ScriptType type) {
  const auto removeFrom = [&](const std::optional<std::string>& folder) {
    const auto name = scriptFileName(deviceID, type);
    if (!folder || !folder_.fileExists(name)) return;
    PXR_LOG(scriptSaveLog(), "Cleaning up URL", *folder + "/" + name);
    if (auto removed = folder_.remove(name); !removed) {
      PXR_LOG_ERROR("Could not remove " + *folder + "/" + name + ": " + removed.failure().reason);
    }
  };
  if (!folder_.needsGrant()) return removeFrom(folder_.location());
  withWritableScriptFolder(false, removeFrom);
}

} // namespace lb
