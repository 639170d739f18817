#pragma once

#include <algorithm>
#include <charconv>
#include <concepts>
#include <cstdint>
#include <exception>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace lb {

// Text helpers for log lines. A value prints as the standard printing of the
// language would: strings bare, numbers in decimal, collections bracketed
// with their strings quoted, an absent optional as "nil".

template <class T>
concept HasDescription = requires(const T& value) {
  { value.description() } -> std::convertible_to<std::string>;
};

template <class T>
concept HasCaseName = std::is_enum_v<T> && requires(T value) {
  { pxrDescription(value) } -> std::convertible_to<std::string>;
};

template <class T>
concept MapLike = std::ranges::range<T> && requires {
  typename T::mapped_type;
};

template <class T>
concept StringLike = std::convertible_to<const T&, std::string_view>;

inline std::string pxrDescribeDouble(double value) {
  char buffer[64];
  auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  std::string text(buffer, end);
  if (text.find_first_of(".eni") == std::string::npos) text += ".0";
  return text;
}

inline std::string pxrQuoted(std::string_view text) {
  std::string quoted = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + "\"";
}

// The text with its control characters (C0, DEL and C1) written as escapes,
// so that text from outside (a device's name, a script's output) can neither
// begin a line of its own nor drive a terminal: "\n", "\t", "\r", and
// "\u001b" for the others. The escapes are JSON's too, so JSON text stays JSON.
inline std::string pxrPrintable(std::string_view text) {
  static constexpr char digits[] = "0123456789abcdef";
  const auto escaped = [](unsigned code) {
    if (code == '\n') return std::string("\\n");
    if (code == '\t') return std::string("\\t");
    if (code == '\r') return std::string("\\r");
    return std::string("\\u00") + digits[code >> 4] + digits[code & 0xf];
  };
  std::string printable;
  printable.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0u;
    if (byte < 0x20 || byte == 0x7f) {
      printable += escaped(byte);
    } else if (byte == 0xc2 && next >= 0x80 && next <= 0x9f) { // U+0080 to U+009F in UTF-8
      printable += escaped(next);
      ++i;
    } else {
      printable += text[i];
    }
  }
  return printable;
}

// As pxrPrintable, line by line: the line feeds stay, so that a text of
// many lines (JSON as written, a file) keeps them.
inline std::string pxrPrintableLines(std::string_view text) {
  std::string printable;
  for (std::size_t start = 0; start < text.size();) {
    const auto end = std::min(text.find('\n', start), text.size());
    printable += pxrPrintable(text.substr(start, end - start));
    if (end < text.size()) printable += '\n';
    start = end + 1;
  }
  return printable;
}

// One value as text; `nested` values sit inside a collection, where strings
// are quoted.
template <class T>
std::string pxrDescribe(const T& value, bool nested = false) {
  if constexpr (StringLike<T>) {
    return nested ? pxrQuoted(std::string_view(value)) : std::string(std::string_view(value));
  } else if constexpr (std::same_as<T, bool>) {
    return value ? "true" : "false";
  } else if constexpr (std::same_as<T, char>) {
    return nested ? pxrQuoted(std::string_view(&value, 1)) : std::string(1, value);
  } else if constexpr (std::integral<T>) {
    return std::to_string(value);
  } else if constexpr (std::floating_point<T>) {
    return pxrDescribeDouble(static_cast<double>(value));
  } else if constexpr (HasDescription<T>) {
    return value.description();
  } else if constexpr (HasCaseName<T>) {
    return pxrDescription(value);
  } else if constexpr (std::is_enum_v<T>) {
    return std::to_string(static_cast<std::underlying_type_t<T>>(value));
  } else if constexpr (std::derived_from<T, std::exception>) {
    return value.what();
  } else if constexpr (MapLike<T>) {
    if (std::ranges::empty(value)) return "[:]";
    std::string text = "[";
    for (const auto& [key, element] : value) {
      if (text.size() > 1) text += ", ";
      text += pxrDescribe(key, true) + ": " + pxrDescribe(element, true);
    }
    return text + "]";
  } else if constexpr (std::ranges::range<T>) {
    std::string text = "[";
    for (const auto& element : value) {
      if (text.size() > 1) text += ", ";
      text += pxrDescribe(element, true);
    }
    return text + "]";
  } else if constexpr (requires {
                         value.has_value();
                         *value;
                       }) {
    return value.has_value() ? pxrDescribe(*value, nested) : "nil";
  } else {
    static_assert(sizeof(T) == 0, "no text for this type");
  }
}

inline std::string pxrDescribe(const char* value, bool nested = false) {
  return pxrDescribe(std::string_view(value ? value : "nil"), nested);
}

// The values, each as printed, joined with `separator`.
template <class... Items>
std::string pxrPrinting([[maybe_unused]] std::string_view separator, const Items&... items) {
  std::string text;
  bool first = true;
  ((text += (first ? "" : std::string(separator)) + pxrDescribe(items), first = false), ...);
  return text;
}

// As pxrPrinting; optional values print their content, or "nil" when absent.
template <class... Items>
std::string pxrPrintingOptionals(std::string_view separator, const Items&... items) {
  return pxrPrinting(separator, items...);
}

// "0x" and the value's 64-bit words, least significant first, in lowercase
// hexadecimal without leading zeros. Signed values are sign-extended, so the
// 32-bit -1 gives sixteen f's.
template <std::integral T>
std::string pxrHexString(T value) {
  std::uint64_t word;
  if constexpr (std::is_signed_v<T>) {
    word = static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
  } else {
    word = static_cast<std::uint64_t>(value);
  }
  char buffer[17];
  auto end = std::to_chars(buffer, buffer + sizeof buffer, word, 16).ptr;
  return "0x" + std::string(buffer, end);
}

// For an enumeration backed by an integer: the raw value in decimal, in
// hexadecimal, and the case's own text, as "-1=0xffffffffffffffff=name".
template <HasCaseName E>
std::string pxrDescriptionWithRaw(E value) {
  auto raw = static_cast<std::underlying_type_t<E>>(value);
  return std::to_string(raw) + "=" + pxrHexString(raw) + "=" + pxrDescription(value);
}

} // namespace lb
