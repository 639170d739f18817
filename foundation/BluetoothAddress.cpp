#include "foundation/BluetoothAddress.h"

#include <algorithm>

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

// Also twelve hexadecimal digits standing alone ("001D43A00002"): a number
// of that form masked by mistake costs less than an address left whole.
std::string BluetoothAddress::masked(std::string_view text) {
  constexpr std::size_t compactLength = 12;
  std::string result(text);
  // Within a longer run of hexadecimal digits (a key, a hash) there is no
  // address.
  const auto alone = [&](std::size_t start, std::size_t length) {
    return start + length <= result.size() && (start == 0 || hexValue(result[start - 1]) < 0) &&
           (start + length == result.size() || hexValue(result[start + length]) < 0);
  };
  std::size_t start = 0;
  while (start + compactLength <= result.size()) {
    const auto compact = std::string_view(result).substr(start, compactLength);
    if (alone(start, textLength) && parse(std::string_view(result).substr(start, textLength))) {
      for (std::size_t at = start + 9; at < start + textLength; at += 3) result.replace(at, 2, "XX");
      start += textLength;
    } else if (alone(start, compactLength) &&
               std::all_of(compact.begin(), compact.end(), [](char c) { return hexValue(c) >= 0; })) {
      result.replace(start + 6, 6, "XXXXXX");
      start += compactLength;
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
