#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace lb {

// One value of the user's settings, as a property list holds it: a Boolean,
// an integer, a real, a string, data, an array or a dictionary. Integers and
// reals stay apart.
class SettingsValue {
public:
  using Data = std::vector<std::uint8_t>;
  using Array = std::vector<SettingsValue>;
  using Dictionary = std::map<std::string, SettingsValue>;
  using Storage = std::variant<bool, std::int64_t, double, std::string, Data, Array, Dictionary>;

  SettingsValue(bool value) : storage_(value) {}
  SettingsValue(std::int64_t value) : storage_(value) {}
  SettingsValue(int value) : storage_(std::int64_t{value}) {}
  SettingsValue(double value) : storage_(value) {}
  SettingsValue(std::string value) : storage_(std::move(value)) {}
  SettingsValue(const char* value) : storage_(std::string(value)) {}
  SettingsValue(Data value) : storage_(std::move(value)) {}
  SettingsValue(Array value) : storage_(std::move(value)) {}
  SettingsValue(Dictionary value) : storage_(std::move(value)) {}

  template <class T>
  bool is() const {
    return std::holds_alternative<T>(storage_);
  }

  // The value if it has type T, else nothing.
  template <class T>
  const T* as() const {
    return std::get_if<T>(&storage_);
  }

  const Storage& storage() const { return storage_; }

  bool operator==(const SettingsValue&) const = default;

  // A stable text for log lines: strings bare at the top and quoted inside
  // collections, dictionaries in key order, data as <hex>.
  std::string description() const;

private:
  std::string describe(bool nested) const;

  Storage storage_;
};

// "nil" for an absent value.
std::string describe(const std::optional<SettingsValue>& value);

} // namespace lb
