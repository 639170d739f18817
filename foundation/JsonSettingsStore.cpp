#include "foundation/JsonSettingsStore.h"

#include "foundation/AtomicFile.h"
#include "foundation/PXRLog.h"
#include "foundation/SettingsJson.h"
#include "foundation/XdgDirectories.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

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

// Where a write goes: a symbolic link's target, so that the link stays.
std::filesystem::path writtenPath(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_symlink(file, error)) return file;
  auto target = std::filesystem::read_symlink(file, error);
  if (error) return file;
  return target.is_absolute() ? target : file.parent_path() / target;
}

// Settings can say where a user's scripts are and what they run: a folder
// made for them is the user's alone.
std::error_code makeFolder(const std::filesystem::path& folder) {
  std::error_code error;
  if (std::filesystem::exists(folder, error)) return error;
  std::filesystem::create_directories(folder, error);
  if (!error) std::filesystem::permissions(folder, std::filesystem::perms::owner_all, error);
  return error;
}

} // namespace

// An exclusive advisory lock on "<file>.lock" for as long as it lives; none
// when the folder cannot hold the lock file (then writers are not kept apart).
class JsonSettingsStore::FileLock {
public:
  explicit FileLock(const std::filesystem::path& file) {
    makeFolder(file.parent_path());
    descriptor_ = ::open((file.string() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor_ >= 0) {
      while (::flock(descriptor_, LOCK_EX) != 0 && errno == EINTR) {
      }
    }
  }
  ~FileLock() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

private:
  int descriptor_ = -1;
};

JsonSettingsStore::JsonSettingsStore(std::filesystem::path file, Access access)
    : file_(std::move(file)), access_(access) {
  load();
}

std::filesystem::path JsonSettingsStore::defaultFile() {
  return XdgDirectories::configHome() / "lanternbud" / "settings.json";
}

bool JsonSettingsStore::canSave() const {
  std::lock_guard lock(mutex_);
  return access_ == Access::readWrite && !unreadable_;
}

JsonSettingsStore::Read JsonSettingsStore::readFile() {
  std::error_code error;
  if (!std::filesystem::exists(file_, error)) return Read::absent;
  auto text = AtomicFile::read(file_);
  if (!text) {
    PXR_LOG_ERROR("Could not read the settings file " + file_.string() + " (" + text.failure().reason +
                  "); Lanternbud starts from its defaults and saves nothing until the file can be read.");
    return Read::unreadable;
  }
  std::string problem;
  auto parsed = SettingsJson::parse(text.value(), problem);
  if (parsed && parsed->is<SettingsValue::Dictionary>()) {
    std::lock_guard lock(mutex_);
    values_ = *parsed->as<SettingsValue::Dictionary>();
    return Read::ok;
  }
  if (parsed) problem = "the top level is not a dictionary";
  if (access_ == Access::readOnly) {
    PXR_LOG_ERROR("The settings file " + file_.string() + " is not valid settings (" + problem + ").");
    return Read::notSettings;
  }
  auto aside = file_;
  aside += ".unreadable-" + timestamp();
  std::filesystem::rename(file_, aside, error);
  if (error) {
    PXR_LOG_ERROR("The settings file " + file_.string() + " is not valid settings (" + problem +
                  ") and could not be moved aside (" + error.message() +
                  "); Lanternbud starts from its defaults and saves nothing until it can be.");
    return Read::unreadable;
  }
  PXR_LOG_ERROR("The settings file " + file_.string() + " is not valid settings (" + problem + "). It was moved to " +
                aside.string() +
                " and Lanternbud starts from its defaults; repair that file and move it back to restore "
                "your settings.");
  return Read::notSettings;
}

void JsonSettingsStore::load() {
  if (access_ == Access::readOnly) {
    readFile();
    return;
  }
  FileLock lock(file_);
  removeLeftovers();
  const bool unreadable = readFile() == Read::unreadable;
  std::lock_guard guard(mutex_);
  unreadable_ = unreadable;
}

// Temporary files of writers that were killed before their rename.
void JsonSettingsStore::removeLeftovers() const {
  const auto prefix = AtomicFile::temporaryPrefix(writtenPath(file_).filename().string());
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(writtenPath(file_).parent_path(), error)) {
    if (entry.path().filename().string().starts_with(prefix)) std::filesystem::remove(entry.path(), error);
  }
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
  change([&](SettingsValue::Dictionary& values) {
    values.insert_or_assign(key, value);
    return true;
  });
}

void JsonSettingsStore::removeValue(const std::string& key) {
  change([&](SettingsValue::Dictionary& values) { return values.erase(key) > 0; });
}

std::optional<std::string> JsonSettingsStore::saveProblem() const {
  std::lock_guard guard(mutex_);
  if (unreadable_) return file_.string() + " could not be read, and writing would replace it";
  return saveProblem_;
}

void JsonSettingsStore::change(const std::function<bool(SettingsValue::Dictionary&)>& modify) {
  if (!canSave()) {
    std::unique_lock guard(mutex_);
    modify(values_);
    const bool tell = access_ == Access::readWrite && !std::exchange(toldNotSaving_, true);
    guard.unlock();
    if (tell) {
      PXR_LOG_ERROR("Not saving the settings: " + file_.string() +
                    " could not be read, and writing would replace it. Make it readable (or move it away) and "
                    "start Lanternbud again.");
    }
    return;
  }
  FileLock lock(file_);
  // Another writer may have changed the file since it was read.
  if (readFile() == Read::unreadable) {
    std::lock_guard guard(mutex_);
    unreadable_ = true;
    modify(values_);
    return;
  }
  SettingsValue::Dictionary snapshot;
  {
    std::lock_guard guard(mutex_);
    if (!modify(values_)) return;
    snapshot = values_;
  }
  save(snapshot);
}

void JsonSettingsStore::save(const SettingsValue::Dictionary& values) {
  const auto path = writtenPath(file_);
  std::optional<std::string> problem;
  if (auto error = makeFolder(path.parent_path())) {
    problem = "creating " + path.parent_path().string() + " failed (" + error.message() + ")";
    PXR_LOG_ERROR("Could not save the settings: " + *problem + ".");
  } else if (auto written = AtomicFile::write(path, SettingsJson::write(values), 0600); !written) {
    problem = "writing " + path.string() + " failed (" + written.failure().reason + ")";
    PXR_LOG_ERROR("Could not save the settings to " + path.string() + " (" + written.failure().reason +
                  "); the previous file is unchanged.");
  }
  std::lock_guard guard(mutex_);
  saveProblem_ = std::move(problem);
}

} // namespace lb
