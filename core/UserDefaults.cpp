#include "core/UserDefaults.h"

#include "core/SettingKeys.h"
#include "foundation/PXRLog.h"
#include "foundation/SettingsJson.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>

namespace lb {

namespace {

std::string lowercased(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::optional<bool> parseBool(const std::string& text) {
  auto word = lowercased(text);
  if (word == "yes" || word == "true" || word == "1") return true;
  if (word == "no" || word == "false" || word == "0") return false;
  return std::nullopt;
}

std::optional<std::int64_t> parseInteger(const std::string& text) {
  std::int64_t value;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<double> parseDouble(const std::string& text) {
  if (text.empty() || std::isspace(static_cast<unsigned char>(text.front()))) return std::nullopt;
  char* end = nullptr;
  double value = std::strtod(text.c_str(), &end);
  if (end != text.c_str() + text.size()) return std::nullopt;
  return value;
}

template <class T>
SettingsValue asSettingsValue(const T& value) {
  return SettingsValue(value);
}
SettingsValue asSettingsValue(const std::vector<std::string>& strings) {
  return SettingsValue::Array(strings.begin(), strings.end());
}

std::optional<std::vector<std::string>> stringArray(const SettingsValue& value) {
  auto array = value.as<SettingsValue::Array>();
  if (!array) return std::nullopt;
  std::vector<std::string> strings;
  for (const auto& element : *array) {
    auto string = element.as<std::string>();
    if (!string) return std::nullopt;
    strings.push_back(*string);
  }
  return strings;
}

} // namespace

UserDefaults::UserDefaults(SettingsStore& store, Arguments arguments)
    : store_(store), arguments_(std::move(arguments)) {}

UserDefaults::Arguments UserDefaults::argumentDomain(const std::vector<std::string>& words) {
  Arguments arguments;
  for (std::size_t i = 0; i + 1 < words.size(); ++i) {
    const auto& word = words[i];
    if (word.size() >= 2 && word[0] == '-' && std::isalpha(static_cast<unsigned char>(word[1]))) {
      arguments.insert_or_assign(word.substr(1), words[i + 1]);
      ++i;
    }
  }
  return arguments;
}

// A stored value that does not fit its key is said once and stays in the
// file for the user to mend; the registered default applies meanwhile.
std::optional<SettingsValue> UserDefaults::storedOrRegistered(const std::string& key) const {
  if (auto stored = store_.value(key)) {
    auto problem = SettingKeys::problem(key, *stored);
    if (!problem) return stored;
    if (firstReport("stored " + key)) {
      PXR_LOG_ERROR("Ignoring the stored setting: " + *problem + " The default applies until it is set again (" +
                    "lanternbud-ctl config set " + key + " ...).");
    }
  }
  std::lock_guard lock(mutex_);
  auto found = registered_.find(key);
  if (found == registered_.end()) return std::nullopt;
  return found->second;
}

bool UserDefaults::firstReport(const std::string& what) const {
  std::lock_guard lock(mutex_);
  return reported_.insert(what).second;
}

// A mistyped command-line value is said once, not at every read.
void UserDefaults::reportUnusable(const std::string& key, const std::string& text, const std::string& why) const {
  if (!firstReport("argument " + key)) return;
  PXR_LOG_ERROR("Ignoring the command-line value \"" + text + "\" of -" + key + ": " + why +
                " The default applies for this run.");
}

// The command line decides if it has the key (a value it cannot read, or
// that does not fit the key, is reported once and gives the default); then
// the stored or registered value, if it has the wanted type.
template <class T, class FromText, class FromStored>
T UserDefaults::read(const std::string& key, const T& fallback, FromText fromText, const char* wanted,
                     FromStored fromStored) const {
  if (auto argument = arguments_.find(key); argument != arguments_.end()) {
    auto parsed = fromText(argument->second);
    if (!parsed) {
      reportUnusable(key, argument->second, std::string("it is not ") + wanted + ".");
      return fallback;
    }
    if (auto problem = SettingKeys::problem(key, asSettingsValue(*parsed))) {
      reportUnusable(key, argument->second, *problem);
      return fallback;
    }
    return *parsed;
  }
  auto value = storedOrRegistered(key);
  std::optional<T> stored = value ? fromStored(*value) : std::nullopt;
  return stored ? *stored : fallback;
}

namespace {
template <class T>
std::optional<T> ofType(const SettingsValue& value) {
  auto stored = value.as<T>();
  return stored ? std::optional<T>(*stored) : std::nullopt;
}
} // namespace

bool UserDefaults::boolValue(const std::string& key, bool fallback) const {
  return read(key, fallback, parseBool, "a Boolean (YES or NO)", ofType<bool>);
}

std::int64_t UserDefaults::integerValue(const std::string& key, std::int64_t fallback) const {
  return read(key, fallback, parseInteger, "a whole number", ofType<std::int64_t>);
}

double UserDefaults::doubleValue(const std::string& key, double fallback) const {
  return read(key, fallback, parseDouble, "a number", [](const SettingsValue& value) -> std::optional<double> {
    if (auto real = value.as<double>()) return *real;
    // A whole number written for a number of seconds means what it says.
    if (auto integer = value.as<std::int64_t>()) return static_cast<double>(*integer);
    return std::nullopt;
  });
}

std::string UserDefaults::stringValue(const std::string& key, const std::string& fallback) const {
  return read(
      key, fallback, [](const std::string& text) { return std::optional(text); }, "a string", ofType<std::string>);
}

std::vector<std::string> UserDefaults::stringArrayValue(const std::string& key,
                                                        const std::vector<std::string>& fallback) const {
  auto fromJson = [](const std::string& text) -> std::optional<std::vector<std::string>> {
    std::string error;
    auto parsed = SettingsJson::parse(text, error);
    return parsed ? stringArray(*parsed) : std::nullopt;
  };
  return read(key, fallback, fromJson, "a JSON array of strings such as [\"a\", \"b\"]", stringArray);
}

std::optional<SettingsValue> UserDefaults::object(const std::string& key) const {
  if (auto argument = arguments_.find(key); argument != arguments_.end()) {
    const auto& text = argument->second;
    if (!text.empty() && (text.front() == '[' || text.front() == '{')) {
      std::string error;
      if (auto parsed = SettingsJson::parse(text, error)) return parsed;
    }
    return SettingsValue(text);
  }
  return storedOrRegistered(key);
}

void UserDefaults::registerDefaults(const SettingsValue::Dictionary& defaults) {
  std::lock_guard lock(mutex_);
  for (const auto& [key, value] : defaults) registered_.insert_or_assign(key, value);
}

} // namespace lb
