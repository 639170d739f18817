#include "foundation/JsonSettingsStore.h"

#include "foundation/AtomicFile.h"
#include "foundation/PXRLog.h"
#include "foundation/SettingsJson.h"
#include "foundation/XdgDirectories.h"

#include <cerrno>
#include <cstring>
#include <cstdio>
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

// Where reads and writes go: the end of a chain of symbolic links, so that
// every link stays. A link to nowhere, or a chain that does not end, is no
// place to write.
Result<std::filesystem::path> finalTarget(const std::filesystem::path& file) {
  constexpr int maximumLinks = 40; // as the kernel follows them
  auto path = file;
  std::error_code error;
  for (int links = 0; std::filesystem::is_symlink(path, error); ++links) {
    if (links == maximumLinks) return Failure{file.string() + " is a chain of symbolic links that does not end"};
    auto target = std::filesystem::read_symlink(path, error);
    if (error) return Failure{"reading the link " + path.string() + " failed (" + error.message() + ")"};
    path = target.is_absolute() ? target : path.parent_path() / target;
  }
  if (path != file && !std::filesystem::exists(std::filesystem::symlink_status(path, error))) {
    return Failure{file.string() + " is a symbolic link to " + path.string() + ", which does not exist"};
  }
  return path;
}

const char* kindOf(std::filesystem::file_type type) {
  switch (type) {
  case std::filesystem::file_type::directory: return "a folder";
  case std::filesystem::file_type::fifo: return "a FIFO";
  case std::filesystem::file_type::socket: return "a socket";
  case std::filesystem::file_type::block: return "a block device";
  case std::filesystem::file_type::character: return "a character device";
  default: return "a special file";
  }
}

// Moves `file` to "<file>.unreadable-<time>", with "-2" and on when that is
// taken: a file kept aside is never replaced.
Result<std::filesystem::path> moveAside(const std::filesystem::path& file) {
  const auto base = file.string() + ".unreadable-" + timestamp();
  for (int n = 1; n < 1000; ++n) {
    const auto aside = n == 1 ? base : base + "-" + std::to_string(n);
    if (::renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0) {
      return std::filesystem::path(aside);
    }
    const int failed = errno;
    // A file system without the flag: look first, with a moment's race.
    std::error_code error;
    if (failed == EINVAL && !std::filesystem::exists(aside, error)) {
      std::filesystem::rename(file, aside, error);
      if (!error) return std::filesystem::path(aside);
      return Failure{error.message()};
    }
    if (failed != EEXIST && failed != EINVAL) return Failure{std::strerror(failed)};
  }
  return Failure{"too many files were kept aside in one second"};
}

} // namespace

// An exclusive advisory lock on "<file>.lock" for as long as it lives; none
// when the folder cannot hold the lock file (then writers are not kept apart).
class JsonSettingsStore::FileLock {
public:
  explicit FileLock(const std::filesystem::path& file) {
    XdgDirectories::makePrivateFolder(file.parent_path());
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

JsonSettingsStore::Read JsonSettingsStore::readFile(SettingsValue::Dictionary& found) {
  const auto startsFromDefaults = [this](const std::string& why, const char* until) {
    PXR_LOG_ERROR("The settings file " + why + "; Lanternbud starts from its defaults and saves nothing until " +
                  until + ".");
    std::lock_guard lock(mutex_);
    unreadable_ = why;
    return Read::unreadable;
  };
  auto target = finalTarget(file_);
  if (!target) return startsFromDefaults(target.failure().reason, "the link is mended or removed");
  const auto& path = target.value();
  std::error_code error;
  const auto type = std::filesystem::status(path, error).type();
  if (type == std::filesystem::file_type::not_found) return Read::absent;
  // Opening a FIFO would wait for a writer for ever.
  if (type != std::filesystem::file_type::regular) {
    return startsFromDefaults(path.string() + " is " + kindOf(type) + ", not a file",
                              "it is replaced by a file; it is left as it is");
  }
  auto text = AtomicFile::read(path);
  if (!text) {
    return startsFromDefaults(path.string() + " could not be read (" + text.failure().reason + ")",
                              "the file can be read");
  }
  std::string problem;
  auto parsed = SettingsJson::parse(text.value(), problem);
  if (parsed && parsed->is<SettingsValue::Dictionary>()) {
    found = *parsed->as<SettingsValue::Dictionary>();
    return Read::ok;
  }
  if (parsed) problem = "the top level is not a dictionary";
  if (access_ == Access::readOnly) {
    PXR_LOG_ERROR("The settings file " + path.string() + " is not valid settings (" + problem + ").");
    return Read::notSettings;
  }
  auto aside = moveAside(path);
  if (!aside) {
    return startsFromDefaults(path.string() + " is not valid settings (" + problem +
                                  ") and could not be moved aside (" + aside.failure().reason + ")",
                              "it can be");
  }
  PXR_LOG_ERROR("The settings file " + path.string() + " is not valid settings (" + problem + "). It was moved to " +
                aside.value().string() +
                " and Lanternbud starts from its defaults; repair that file and move it back to restore "
                "your settings.");
  return Read::notSettings;
}

void JsonSettingsStore::load() {
  SettingsValue::Dictionary found;
  std::optional<FileLock> lock;
  if (access_ == Access::readWrite) {
    lock.emplace(file_);
    removeLeftovers();
  }
  if (readFile(found) != Read::ok) return;
  std::lock_guard guard(mutex_);
  values_ = std::move(found);
}

// Temporary files of writers that were killed before their rename.
void JsonSettingsStore::removeLeftovers() const {
  auto target = finalTarget(file_);
  if (!target) return;
  const auto prefix = AtomicFile::temporaryPrefix(target.value().filename().string());
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(target.value().parent_path(), error)) {
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
  change(key, std::move(value));
}

void JsonSettingsStore::removeValue(const std::string& key) { change(key, std::nullopt); }

std::optional<std::string> JsonSettingsStore::saveProblem() const {
  std::lock_guard guard(mutex_);
  if (unreadable_) return *unreadable_ + ", and nothing is saved while it stays so";
  return saveProblem_;
}

void JsonSettingsStore::change(const std::string& key, std::optional<SettingsValue> value) {
  const auto apply = [](SettingsValue::Dictionary& values, const std::string& name,
                        const std::optional<SettingsValue>& given) {
    if (given) values.insert_or_assign(name, *given);
    else values.erase(name);
  };
  if (!canSave()) {
    std::unique_lock guard(mutex_);
    apply(values_, key, value);
    const bool tell = access_ == Access::readWrite && !std::exchange(toldNotSaving_, true);
    const auto why = unreadable_.value_or("");
    guard.unlock();
    if (tell) {
      PXR_LOG_ERROR("Not saving the settings: " + why +
                    ". Mend it (or move it away) and start Lanternbud again; until then changes last for this run.");
    }
    return;
  }
  FileLock lock(file_);
  // Another writer may have changed the file since it was read.
  SettingsValue::Dictionary onDisk;
  const auto read = readFile(onDisk);
  SettingsValue::Dictionary snapshot;
  {
    std::lock_guard guard(mutex_);
    pending_.insert_or_assign(key, std::move(value));
    if (read == Read::ok) values_ = onDisk;
    for (const auto& [name, given] : pending_) apply(values_, name, given);
    if (read == Read::unreadable) return;
    if (read == Read::ok && values_ == onDisk) {
      pending_.clear();
      saveProblem_.reset();
      return;
    }
    snapshot = values_;
  }
  if (save(snapshot)) {
    std::lock_guard guard(mutex_);
    pending_.clear();
  }
}

bool JsonSettingsStore::save(const SettingsValue::Dictionary& values) {
  const auto target = finalTarget(file_);
  const auto path = target ? target.value() : file_;
  std::optional<std::string> problem;
  if (!target) {
    problem = target.failure().reason;
  } else if (auto error = XdgDirectories::makePrivateFolder(path.parent_path())) {
    problem = "creating " + path.parent_path().string() + " failed (" + error.message() + ")";
  } else if (auto written = AtomicFile::write(path, SettingsJson::write(values), 0600); !written) {
    problem = "writing " + path.string() + " failed (" + written.failure().reason + ")";
  }
  if (problem) {
    PXR_LOG_ERROR("Could not save the settings: " + *problem +
                  ". The previous file is unchanged; the change stays in effect and is saved with the next one "
                  "that can be.");
  }
  std::lock_guard guard(mutex_);
  saveProblem_ = problem;
  return !problem;
}

} // namespace lb
