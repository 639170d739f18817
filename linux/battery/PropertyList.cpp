#include "linux/battery/PropertyList.h"

#include <plist/plist.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace lb {

namespace {

struct PlistFree {
  void operator()(plist_t node) const { plist_free(node); }
};
using Plist = std::unique_ptr<void, PlistFree>;

struct StringFree {
  void operator()(char* text) const { std::free(text); }
};
using PlistString = std::unique_ptr<char, StringFree>;

plist_t node(const SettingsValue& value) {
  return std::visit(
      [](const auto& v) -> plist_t {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, bool>) {
          return plist_new_bool(v ? 1 : 0);
        } else if constexpr (std::is_same_v<T, std::int64_t>) {
          // This libplist writes only unsigned integers; a negative one
          // keeps its value as a real.
          return v < 0 ? plist_new_real(static_cast<double>(v)) : plist_new_uint(static_cast<std::uint64_t>(v));
        } else if constexpr (std::is_same_v<T, double>) {
          return plist_new_real(v);
        } else if constexpr (std::is_same_v<T, std::string>) {
          return plist_new_string(v.c_str());
        } else if constexpr (std::is_same_v<T, SettingsValue::Data>) {
          return plist_new_data(reinterpret_cast<const char*>(v.data()), v.size());
        } else if constexpr (std::is_same_v<T, SettingsValue::Array>) {
          plist_t array = plist_new_array();
          for (const auto& item : v) plist_array_append_item(array, node(item));
          return array;
        } else {
          plist_t dictionary = plist_new_dict();
          for (const auto& [key, item] : v) plist_dict_set_item(dictionary, key.c_str(), node(item));
          return dictionary;
        }
      },
      value.storage());
}

SettingsValue value(plist_t node) {
  switch (plist_get_node_type(node)) {
  case PLIST_BOOLEAN: {
    std::uint8_t flag = 0;
    plist_get_bool_val(node, &flag);
    return flag != 0;
  }
  case PLIST_UINT: {
    std::uint64_t number = 0;
    plist_get_uint_val(node, &number);
    return static_cast<std::int64_t>(number);
  }
  case PLIST_REAL: {
    double number = 0;
    plist_get_real_val(node, &number);
    return number;
  }
  case PLIST_DATE: {
    std::int32_t seconds = 0, microseconds = 0;
    plist_get_date_val(node, &seconds, &microseconds);
    return seconds + microseconds / 1e6;
  }
  case PLIST_STRING: {
    char* raw = nullptr;
    plist_get_string_val(node, &raw);
    PlistString text(raw);
    return std::string(text ? text.get() : "");
  }
  case PLIST_DATA: {
    char* raw = nullptr;
    std::uint64_t length = 0;
    plist_get_data_val(node, &raw, &length);
    PlistString bytes(raw);
    auto* first = reinterpret_cast<const std::uint8_t*>(bytes.get());
    return SettingsValue::Data(first, first + (bytes ? length : 0));
  }
  case PLIST_ARRAY: {
    SettingsValue::Array array;
    for (std::uint32_t i = 0; i < plist_array_get_size(node); ++i)
      array.push_back(value(plist_array_get_item(node, i)));
    return array;
  }
  case PLIST_DICT: {
    SettingsValue::Dictionary dictionary;
    plist_dict_iter it = nullptr;
    plist_dict_new_iter(node, &it);
    for (;;) {
      char* rawKey = nullptr;
      plist_t item = nullptr;
      plist_dict_next_item(node, it, &rawKey, &item);
      PlistString key(rawKey);
      if (!item) break;
      dictionary.emplace(key.get(), value(item));
    }
    std::free(it);
    return dictionary;
  }
  default: throw std::runtime_error("the property list holds a value of an unknown kind");
  }
}

} // namespace

std::string PropertyList::xml(const SettingsValue& value) {
  Plist root(node(value));
  char* raw = nullptr;
  std::uint32_t length = 0;
  plist_to_xml(root.get(), &raw, &length);
  if (!raw) throw std::runtime_error("the property list could not be written");
  PlistString text(raw);
  return std::string(text.get(), length);
}

SettingsValue PropertyList::parse(std::string_view text) {
  plist_t raw = nullptr;
  if (!text.empty()) plist_from_memory(text.data(), static_cast<std::uint32_t>(text.size()), &raw);
  Plist root(raw);
  if (!root) throw std::runtime_error("not a property list (" + std::to_string(text.size()) + " bytes)");
  return value(root.get());
}

} // namespace lb
