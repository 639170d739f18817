#include "foundation/SettingsValue.h"

#include "foundation/Printing.h"

namespace lb {

std::string SettingsValue::description() const { return describe(false); }

std::string SettingsValue::describe(bool nested) const {
  return std::visit(
      [nested](const auto& value) -> std::string {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, Data>) {
          static constexpr char digits[] = "0123456789abcdef";
          std::string text = "<";
          for (auto byte : value) {
            text += digits[byte >> 4];
            text += digits[byte & 0xf];
          }
          return text + ">";
        } else if constexpr (std::is_same_v<T, Array>) {
          std::string text = "[";
          for (const auto& element : value) {
            if (text.size() > 1) text += ", ";
            text += element.describe(true);
          }
          return text + "]";
        } else if constexpr (std::is_same_v<T, Dictionary>) {
          if (value.empty()) return "[:]";
          std::string text = "[";
          for (const auto& [key, element] : value) {
            if (text.size() > 1) text += ", ";
            text += pxrQuoted(key) + ": " + element.describe(true);
          }
          return text + "]";
        } else {
          return pxrDescribe(value, nested);
        }
      },
      storage_);
}

std::string describe(const std::optional<SettingsValue>& value) { return value ? value->description() : "nil"; }

} // namespace lb
