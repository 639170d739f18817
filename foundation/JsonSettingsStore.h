#pragma once

#include "foundation/SettingsStore.h"

#include <filesystem>
#include <map>
#include <mutex>

namespace lb {

// The user's settings in one JSON file, mode 0600 in a folder of mode 0700,
// replaced atomically on every change (through a chain of symbolic links, to
// its final target, so that every link stays). Every change is a
// read-modify-write under a lock on "<file>.lock", so that two writers (the
// program starting, lanternbud-ctl) lose nothing of each other's.
//
// What cannot be read or understood is never written over. A file that is
// not settings is moved aside and the program starts from its defaults; one
// that cannot be read at all (its permissions, a link to nowhere, a FIFO in
// its place) stays, and nothing is saved this run. Either way the error
// channel says which and where. A change that could not be written stays in
// effect and goes with the next save that works.
class JsonSettingsStore final : public SettingsStore {
public:
  enum class Access {
    readWrite,
    readOnly, // a reader changes nothing on disk, not even a bad file
  };

  explicit JsonSettingsStore(std::filesystem::path file, Access access = Access::readWrite);

  // $XDG_CONFIG_HOME/lanternbud/settings.json
  static std::filesystem::path defaultFile();

  std::optional<SettingsValue> value(const std::string& key) const override;
  void setValue(const std::string& key, SettingsValue value) override;
  void removeValue(const std::string& key) override;

  const std::filesystem::path& file() const { return file_; }
  // False when changes stay in memory: the file could not be read.
  bool canSave() const;
  std::optional<std::string> saveProblem() const override;

private:
  class FileLock;
  enum class Read { ok, absent, notSettings, unreadable };

  // With the lock held: the file's settings into `found`.
  Read readFile(SettingsValue::Dictionary& found);
  void load();
  // Sets (or with none, removes) `key` and writes the file under its lock,
  // with every change that has not been written yet.
  void change(const std::string& key, std::optional<SettingsValue> value);
  // Whether the file now holds `values`.
  bool save(const SettingsValue::Dictionary& values);
  void removeLeftovers() const;

  const std::filesystem::path file_;
  const Access access_;
  // Never held while logging to an area: the logger asks the settings which
  // areas are on.
  mutable std::mutex mutex_;
  SettingsValue::Dictionary values_;
  // Changes not in the file yet, laid over what the next read finds.
  std::map<std::string, std::optional<SettingsValue>> pending_;
  // Why nothing is saved this run: the file could not be read.
  std::optional<std::string> unreadable_;
  bool toldNotSaving_ = false;
  std::optional<std::string> saveProblem_;
};

} // namespace lb
