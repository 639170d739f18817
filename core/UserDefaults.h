#pragma once

#include "foundation/Listeners.h"
#include "foundation/SettingsStore.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace lb {

// The user's settings as the program reads them, from three domains in
// order: the command line ("-Key value", for this run only), the stored
// settings, and the registered defaults. The first domain holding a key
// decides; a value that does not fit the key (its type or range, from the
// key table) is said once and counts as absent, so the default applies.
class UserDefaults {
public:
  using Arguments = std::map<std::string, std::string>;

  UserDefaults(SettingsStore& store, Arguments arguments = {});

  // The "-Key value" pairs of a command line. A key starts with a letter, so
  // "--demo" is not one; a value may start with a hyphen ("-1").
  static Arguments argumentDomain(const std::vector<std::string>& words);

  // Command-line values are text: Booleans accept YES, NO, true, false, 1
  // and 0; numbers are decimal; an array is written as JSON.
  bool boolValue(const std::string& key, bool fallback) const;
  std::int64_t integerValue(const std::string& key, std::int64_t fallback) const;
  double doubleValue(const std::string& key, double fallback) const;
  std::string stringValue(const std::string& key, const std::string& fallback) const;
  std::vector<std::string> stringArrayValue(const std::string& key, const std::vector<std::string>& fallback) const;

  // The value whatever its type; a command-line value is a string unless it
  // is JSON text of an array or dictionary.
  std::optional<SettingsValue> object(const std::string& key) const;

  void registerDefaults(const SettingsValue::Dictionary& defaults);

  // Keeps the change and tells the listeners, with the key.
  void setValue(const std::string& key, SettingsValue value) {
    store_.setValue(key, std::move(value));
    listeners_.notify(key);
  }
  void removeValue(const std::string& key) {
    store_.removeValue(key);
    listeners_.notify(key);
  }
  // Why the last change was not saved; none when it was.
  std::optional<std::string> saveProblem() const { return store_.saveProblem(); }
  // Told of every change made through these defaults, on the thread that
  // made it (the main thread: scripting requests and windows).
  std::unique_ptr<NotificationRegistration> addChangeListener(std::function<void(const std::string& key)> listener) {
    return listeners_.add(std::move(listener));
  }

private:
  std::optional<SettingsValue> storedOrRegistered(const std::string& key) const;
  // Whether `what` is said for the first time.
  bool firstReport(const std::string& what) const;
  void reportUnusable(const std::string& key, const std::string& text, const std::string& why) const;
  template <class T, class FromText, class FromStored>
  T read(const std::string& key, const T& fallback, FromText fromText, const char* wanted, FromStored fromStored) const;

  SettingsStore& store_;
  const Arguments arguments_;
  mutable std::mutex mutex_;
  SettingsValue::Dictionary registered_;
  mutable std::set<std::string> reported_;
  Listeners<std::string> listeners_;
};

} // namespace lb
