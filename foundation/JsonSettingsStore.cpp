#include "foundation/JsonSettingsStore.h"

#include "foundation/PXRLog.h"
#include "foundation/SettingsJson.h"
#include "foundation/AtomicFile.h"
#include "foundation/XdgDirectories.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <sys/stat.h>

namespace lb {

namespace {

std::string timestamp() {
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[32];
  std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", &local);
  return text;
}

} // namespace

JsonSettingsStore::JsonSettingsStore(std::filesystem::path file) : file_(std::move(file)) { load(); }

std::filesystem::path JsonSettingsStore::defaultFile() {
  return XdgDirectories::configHome() / "lanternbud" / "settings.json";
}

void JsonSettingsStore::load() {
  auto text = AtomicFile::read(file_);
  if (!text) {
    if (std::filesystem::exists(file_)) {
      PXR_LOG_ERROR("Could not read the settings file " + file_.string() + " (" + text.failure().reason +
                    "); starting from the defaults without changing it.");
    }
    return;
  }
  std::string error;
  auto parsed = SettingsJson::parse(text.value(), error);
  if (parsed && parsed->is<SettingsValue::Dictionary>()) {
    values_ = *parsed->as<SettingsValue::Dictionary>();
    return;
  }
  if (parsed) error = "the top level is not a dictionary";

  auto aside = file_;
  aside += ".unreadable-" + timestamp();
  std::error_code renameError;
  std::filesystem::rename(file_, aside, renameError);
  if (renameError) {
    PXR_LOG_ERROR("The settings file " + file_.string() + " is not valid settings (" + error +
                  ") and could not be moved aside (" + renameError.message() +
                  "); starting from the defaults without changing it.");
    return;
  }
  PXR_LOG_ERROR("The settings file " + file_.string() + " is not valid settings (" + error + "). It was moved to " +
                aside.string() +
                " and Lanternbud starts from its defaults; repair that file and move it back to restore "
                "your settings.");
}

std::optional<SettingsValue> JsonSettingsStore::value(const std::string& key) const {
  std::lock_guard lock(mutex_);
  auto found = values_.find(key);
  if (found == values_.end()) return std::nullopt;
  return found->second;
}

void JsonSettingsStore::setValue(const std::string& key, SettingsValue value) {
  if (!SettingsJson::isWritable(value)) {
    PXR_LOG_ERROR("Not storing " + key + ": " + value.description() +
                  " holds a number that is not finite, which a settings file cannot keep.");
    return;
  }
  SettingsValue::Dictionary snapshot;
  {
    std::lock_guard lock(mutex_);
    values_.insert_or_assign(key, std::move(value));
    snapshot = values_;
  }
  save(snapshot);
}

void JsonSettingsStore::removeValue(const std::string& key) {
  SettingsValue::Dictionary snapshot;
  {
    std::lock_guard lock(mutex_);
    if (values_.erase(key) == 0) return;
    snapshot = values_;
  }
  save(snapshot);
}

void JsonSettingsStore::save(const SettingsValue::Dictionary& values) const {
  std::error_code directoryError;
  std::filesystem::create_directories(file_.parent_path(), directoryError);
  if (directoryError) {
    PXR_LOG_ERROR("Could not save the settings: creating " + file_.parent_path().string() + " failed (" +
                  directoryError.message() + ").");
    return;
  }
  if (auto written = AtomicFile::write(file_, SettingsJson::write(values), 0600); !written) {
    PXR_LOG_ERROR("Could not save the settings to " + file_.string() + " (" + written.failure().reason +
                  "); the previous file is unchanged.");
  }
}

} // namespace lb
