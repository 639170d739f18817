#include "foundation/BluetoothAddress.h"

namespace lb {

namespace {

constexpr std::size_t textLength = 17;

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

} // namespace

std::optional<BluetoothAddress> BluetoothAddress::parse(std::string_view text) {
  if (text.size() != textLength) return std::nullopt;
  const char separator = text[2];
  if (separator != ':' && separator != '-' && separator != '_') return std::nullopt;
  std::array<std::uint8_t, 6> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto at = i * 3;
    const int high = hexValue(text[at]), low = hexValue(text[at + 1]);
    if (high < 0 || low < 0 || (i < 5 && text[at + 2] != separator)) return std::nullopt;
    bytes[i] = static_cast<std::uint8_t>(high * 16 + low);
  }
  return BluetoothAddress(bytes);
}

std::optional<BluetoothAddress> BluetoothAddress::findIn(std::string_view text) {
  for (std::size_t start = 0; start + textLength <= text.size(); ++start) {
    if (auto address = parse(text.substr(start, textLength))) return address;
  }
  return std::nullopt;
}

std::string BluetoothAddress::masked(std::string_view text) {
  std::string result(text);
  std::size_t start = 0;
  while (start + textLength <= result.size()) {
    // Within a longer run of hexadecimal digits (a key, a hash) there is no
    // address.
    const bool alone = (start == 0 || hexValue(result[start - 1]) < 0) &&
                       (start + textLength == result.size() || hexValue(result[start + textLength]) < 0);
    if (alone && parse(std::string_view(result).substr(start, textLength))) {
      for (std::size_t at = start + 9; at < start + textLength; at += 3) result.replace(at, 2, "XX");
      start += textLength;
    } else {
      ++start;
    }
  }
  return result;
}

std::string BluetoothAddress::toString() const {
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string text;
  for (auto byte : bytes_) {
    if (!text.empty()) text += ':';
    text += digits[byte >> 4];
    text += digits[byte & 0xf];
  }
  return text;
}

} // namespace lb
