#include "foundation/SettingsJson.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace lb {

using Json = nlohmann::json;

namespace {

constexpr const char* dataKey = "$data";

struct Unrepresentable : std::runtime_error {
  using std::runtime_error::runtime_error;
};

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

SettingsValue::Data dataFromHex(const std::string& hex) {
  if (hex.size() % 2 != 0) throw Unrepresentable("data with an odd number of hex digits");
  SettingsValue::Data data;
  data.reserve(hex.size() / 2);
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    int high = hexDigit(hex[i]), low = hexDigit(hex[i + 1]);
    if (high < 0 || low < 0) throw Unrepresentable("data with a character that is not hex");
    data.push_back(static_cast<std::uint8_t>(high * 16 + low));
  }
  return data;
}

SettingsValue fromJson(const Json& json, int depth) {
  if (depth > SettingsJson::maximumDepth) throw Unrepresentable("nesting too deep");
  switch (json.type()) {
  case Json::value_t::boolean: return json.get<bool>();
  case Json::value_t::number_integer: return json.get<std::int64_t>();
  case Json::value_t::number_unsigned: {
    auto value = json.get<std::uint64_t>();
    if (value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
      throw Unrepresentable("an integer too large");
    }
    return static_cast<std::int64_t>(value);
  }
  case Json::value_t::number_float: return json.get<double>();
  case Json::value_t::string: return json.get<std::string>();
  case Json::value_t::array: {
    SettingsValue::Array array;
    array.reserve(json.size());
    for (const auto& element : json) array.push_back(fromJson(element, depth + 1));
    return array;
  }
  case Json::value_t::object: {
    if (json.size() == 1 && json.contains(dataKey) && json[dataKey].is_string()) {
      return dataFromHex(json[dataKey].get<std::string>());
    }
    SettingsValue::Dictionary dictionary;
    for (const auto& [key, element] : json.items()) dictionary.emplace(key, fromJson(element, depth + 1));
    return dictionary;
  }
  default: throw Unrepresentable("null or another value that settings cannot hold");
  }
}

Json toJson(const SettingsValue& value) {
  return std::visit(
      [](const auto& stored) -> Json {
        using T = std::decay_t<decltype(stored)>;
        if constexpr (std::is_same_v<T, SettingsValue::Data>) {
          static constexpr char digits[] = "0123456789abcdef";
          std::string hex;
          for (auto byte : stored) {
            hex += digits[byte >> 4];
            hex += digits[byte & 0xf];
          }
          return Json{{dataKey, hex}};
        } else if constexpr (std::is_same_v<T, SettingsValue::Array>) {
          Json array = Json::array();
          for (const auto& element : stored) array.push_back(toJson(element));
          return array;
        } else if constexpr (std::is_same_v<T, SettingsValue::Dictionary>) {
          Json object = Json::object();
          for (const auto& [key, element] : stored) object[key] = toJson(element);
          return object;
        } else {
          return Json(stored);
        }
      },
      value.storage());
}

} // namespace

std::optional<SettingsValue> SettingsJson::parse(std::string_view text, std::string& error) {
  try {
    return fromJson(Json::parse(text), 0);
  } catch (const std::exception& failure) {
    error = failure.what();
    return std::nullopt;
  }
}

std::string SettingsJson::write(const SettingsValue& value) {
  return toJson(value).dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string SettingsJson::writeLine(const SettingsValue& value) {
  return toJson(value).dump(-1, ' ', false, Json::error_handler_t::replace);
}

bool SettingsJson::isWritable(const SettingsValue& value) {
  if (auto real = value.as<double>()) return std::isfinite(*real);
  if (auto array = value.as<SettingsValue::Array>()) {
    for (const auto& element : *array) {
      if (!isWritable(element)) return false;
    }
  }
  if (auto dictionary = value.as<SettingsValue::Dictionary>()) {
    for (const auto& [key, element] : *dictionary) {
      if (!isWritable(element)) return false;
    }
  }
  return true;
}

} // namespace lb
