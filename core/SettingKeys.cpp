#include "core/SettingKeys.h"

#include "core/LogAreas.h"
#include "core/Tunables.h"
#include "foundation/Printing.h"
#include "foundation/SettingsJson.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <vector>

namespace lb {

namespace {

struct Option {
  std::string_view key;
  SettingType type;
};
// The registry checks the device list itself, and keeps one it cannot read.
constexpr Option options[] = {{settingKey::launchAtLogin, SettingType::boolean},
                              {settingKey::hideDockIcon, SettingType::boolean},
                              {settingKey::currentSettingVersion, SettingType::text},
                              {settingKey::scriptFolderURL, SettingType::data},
                              {settingKey::devices, SettingType::anything}};
constexpr std::string_view shortcutPrefixes[] = {SettingKeys::shortcutPrefix, SettingKeys::oldShortcutPrefix};

bool hasPrefixAndNumber(std::string_view key, std::string_view prefix) {
  return key.starts_with(prefix) && key.size() > prefix.size() &&
         std::all_of(key.begin() + static_cast<std::ptrdiff_t>(prefix.size()), key.end(),
                     [](char c) { return std::isdigit(static_cast<unsigned char>(c)); });
}

// What the table expects of `key`; none for a key outside it.
std::optional<tunable::Known> expectation(std::string_view key) {
  if (auto found = tunable::known().find(key); found != tunable::known().end()) return found->second;
  for (const auto& option : options) {
    if (option.key == key) return tunable::Known{option.type, {}};
  }
  if (std::find(std::begin(allLogAreaNames), std::end(allLogAreaNames), key) != std::end(allLogAreaNames)) {
    return tunable::Known{SettingType::boolean, {}};
  }
  for (auto prefix : shortcutPrefixes) {
    if (hasPrefixAndNumber(key, prefix)) return tunable::Known{SettingType::shortcut, {}};
  }
  return std::nullopt;
}

bool isText(const SettingsValue& value) { return value.is<std::string>(); }

bool fits(SettingType type, const SettingsValue& value) {
  switch (type) {
  case SettingType::boolean: return value.is<bool>();
  case SettingType::integer: return value.is<std::int64_t>();
  case SettingType::number: return value.is<std::int64_t>() || value.is<double>();
  case SettingType::text: return isText(value);
  case SettingType::textList: {
    const auto* array = value.as<SettingsValue::Array>();
    return array && std::all_of(array->begin(), array->end(), isText);
  }
  case SettingType::data: return value.is<SettingsValue::Data>();
  case SettingType::shortcut: {
    const auto* dictionary = value.as<SettingsValue::Dictionary>();
    auto found = dictionary ? dictionary->find("keySequence") : SettingsValue::Dictionary::const_iterator{};
    return dictionary && found != dictionary->end() && isText(found->second);
  }
  case SettingType::anything: return true;
  }
  return false;
}

std::string described(const tunable::Known& expected) {
  const auto& range = expected.range;
  const bool bounded = range.minimum > -std::numeric_limits<double>::infinity() ||
                       range.maximum < std::numeric_limits<double>::infinity();
  const auto between = [&](auto describe) {
    return bounded ? " from " + describe(range.minimum) + " to " + describe(range.maximum) : std::string();
  };
  const auto whole = [](double value) { return std::to_string(static_cast<long long>(value)); };
  switch (expected.type) {
  case SettingType::boolean: return "true or false";
  case SettingType::integer: return "a whole number" + between(whole);
  case SettingType::number: return "a number" + between(pxrDescribeDouble);
  case SettingType::text: return expected.form ? expected.form : "text";
  case SettingType::textList: return "a list of texts such as [\"a\", \"b\"]";
  case SettingType::data: return "data";
  case SettingType::shortcut: return "a shortcut such as {\"keySequence\": \"Ctrl+Alt+H\"}";
  case SettingType::anything: break;
  }
  return "anything";
}

// Edits (insert, delete, replace) between two keys, ignoring letter case.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool same = std::tolower(static_cast<unsigned char>(a[i - 1])) ==
                        std::tolower(static_cast<unsigned char>(b[j - 1]));
      const std::size_t next = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (same ? 0 : 1)});
      diagonal = row[j];
      row[j] = next;
    }
  }
  return row[b.size()];
}

} // namespace

std::vector<std::string_view> SettingKeys::all() {
  std::vector<std::string_view> keys;
  for (const auto& option : options) keys.push_back(option.key);
  keys.insert(keys.end(), std::begin(allLogAreaNames), std::end(allLogAreaNames));
  for (const auto& [key, known] : tunable::known()) keys.push_back(key);
  return keys;
}

bool SettingKeys::isKnown(std::string_view key) { return expectation(key) || key.starts_with(unreadableDevicesPrefix); }

std::optional<std::string> SettingKeys::problem(std::string_view key, const SettingsValue& value) {
  const auto expected = expectation(key);
  if (!expected) return std::nullopt;
  const auto* number = value.as<double>();
  const auto* integer = value.as<std::int64_t>();
  const bool fitting = fits(expected->type, value) && (!number || expected->range.contains(*number)) &&
                       (!integer || expected->range.contains(static_cast<double>(*integer))) &&
                       (!expected->textCheck || expected->textCheck(*value.as<std::string>()));
  if (fitting) return std::nullopt;
  auto given = SettingsJson::isWritable(value) ? SettingsJson::writeLine(value) : value.description();
  if (given.size() > 100) given = given.substr(0, 100) + "…";
  return std::string(key) + " takes " + described(*expected) + ", not " + given + ".";
}

std::optional<std::string> SettingKeys::tooLong(std::string_view key) {
  if (key.size() <= maximumLength) return std::nullopt;
  return "No setting has a name of " + std::to_string(key.size()) + " bytes; none is longer than " +
         std::to_string(maximumLength) + ".";
}

std::optional<std::string> SettingKeys::whyUnknown(std::string_view key) {
  if (key.empty()) return "The key is empty.";
  if (auto refusal = tooLong(key)) return refusal;
  if (isKnown(key)) return std::nullopt;
  const auto near = nearest(key);
  return "No setting is called \"" + std::string(key) + "\"" + (near ? "; did you mean " + *near + "?" : ".");
}

// The edit distance takes the product of the lengths: a name longer than any
// key has no neighbour worth that.
std::optional<std::string> SettingKeys::nearest(std::string_view key) {
  if (key.size() > maximumLength) return std::nullopt;
  std::optional<std::string> best;
  std::size_t bestDistance = std::max<std::size_t>(2, key.size() / 4) + 1;
  for (auto known : all()) {
    if (auto d = distance(key, known); d < bestDistance) {
      bestDistance = d;
      best = std::string(known);
    }
  }
  return best;
}

} // namespace lb
