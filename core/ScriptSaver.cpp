#include "core/ScriptSaver.h"
#include "core/SettingKeys.h"

#include "core/AppIdentity.h"
#include "core/LogAreas.h"
#include "core/Texts.h"

namespace lb {

namespace {
constexpr const char* bookmarkKey = settingKey::scriptFolderURL;

struct FileFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};
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

std::pair<std::string, bool> ScriptSaver::ensureScriptsFolder() {
  auto folder = folder_.location();
  if (!folder) throw FileFailure("the system has no place for a scripts folder");
  if (folder_.exists()) {
    PXR_LOG(scriptSaveLog(), "Scripts folder already exists:", *folder);
    return {*folder, false};
  }
  auto parent = folder_.parentLocation();
  PXR_LOG(scriptSaveLog(), "Prompting for access to:", parent);
  if (!promptForAccess(
          parent, localized("Please select the User > Library > Application Scripts folder to save the scripts."))) {
    PXR_LOG(scriptSaveLog(), "Didn't get access to:", parent);
    if (auto created = folder_.create(); !created) throw FileFailure(created.failure().reason);
    return {*folder, false};
  }
  if (auto created = folder_.create(); !created) throw FileFailure(created.failure().reason);
  PXR_LOG(scriptSaveLog(), "Created:", *folder);
  return {*folder, true};
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
  try {
    auto [folder, access] = ensureScriptsFolder();
    PXR_LOG(scriptSaveLog(), "Access", access, "to folder", folder);
    bool granted = access ||
                   promptForAccess(folder, localized("Please select the User > Library > Application Scripts > ") +
                                               bundleIdentifier + localized(" folder to save the scripts."));
    if (granted) {
      auto bookmark = folder_.bookmark(folder);
      if (!bookmark) throw FileFailure("could not remember access to " + folder);
      PXR_LOG(scriptSaveLog(), "Saving bookmark for", folder);
      defaults_.setValue(bookmarkKey, *bookmark);
      completion(folder);
      return;
    }
  } catch (const std::exception& error) {
    pxrLogError(std::string("Error getting script folder: ") + error.what());
  }
  PXR_LOG(scriptSaveLog(), "Never got access");
  completion(std::nullopt);
}

void ScriptSaver::saveScript(std::int64_t deviceID, ScriptType type, const std::optional<std::string>& text) {
  withWritableScriptFolder(true, [&](const std::optional<std::string>& folder) {
    PXR_LOG(scriptSaveLog(), "Received baseURL", folder);
    if (!folder) throw ScriptError();
    const auto name = scriptFileName(deviceID, type);
    const auto path = *folder + "/" + name;
    PXR_LOG(scriptSaveLog(), "Script URL is", path);
    if (folder_.fileExists(name)) {
      PXR_LOG(scriptSaveLog(), "Removing URL", path);
      if (auto removed = folder_.remove(name); !removed)
        throw FileFailure("removing " + path + ": " + removed.failure().reason);
    }
    if (!text || text->empty()) return;
    PXR_LOG(scriptSaveLog(), "Writing to URL", path);
    if (auto written = folder_.write(name, normalizingLineBreaks(*text)); !written) {
      throw FileFailure("writing " + path + ": " + written.failure().reason);
    }
  });
}

// A script left behind would run for the next device given the same ID, so
// without a sandbox the files go without a grant.
void ScriptSaver::cleanUp(std::int64_t deviceID, ScriptType type) {
  const auto removeFrom = [&](const std::optional<std::string>& folder) {
    const auto name = scriptFileName(deviceID, type);
    if (!folder || !folder_.fileExists(name)) return;
    PXR_LOG(scriptSaveLog(), "Cleaning up URL", *folder + "/" + name);
    if (auto removed = folder_.remove(name); !removed) {
      pxrLogError("Could not remove " + *folder + "/" + name + ": " + removed.failure().reason);
    }
  };
  if (!folder_.needsGrant()) return removeFrom(folder_.location());
  try {
    withWritableScriptFolder(false, removeFrom);
  } catch (const std::exception&) {
    // Cleaning up reports nothing more: the next save of a script replaces the file.
  }
}

} // namespace lb
