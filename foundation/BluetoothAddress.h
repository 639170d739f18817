#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lb {

// A Bluetooth device address: six bytes, written "AA:BB:CC:DD:EE:FF" as
// BlueZ writes it. The one place that reads and writes addresses.
class BluetoothAddress {
public:
  // Six hexadecimal pairs joined by one separator, ':', '-' or '_', in
  // either case: "aa:bb:cc:dd:ee:ff", "AA-BB-CC-DD-EE-FF". Nothing else.
  static std::optional<BluetoothAddress> parse(std::string_view text);
  // The first address within a longer text, such as a D-Bus path
  // ("/org/bluez/hci0/dev_AA_BB_…") or a sound device's properties.
  static std::optional<BluetoothAddress> findIn(std::string_view text);
  // `text` with every address in it, in any of the forms `parse` reads, cut
  // to its first half: "00:1B:66:XX:XX:XX". The first half names the maker,
  // the second the device, and so its owner.
  static std::string masked(std::string_view text);

  // "AA:BB:CC:DD:EE:FF"
  std::string toString() const;

  bool operator==(const BluetoothAddress&) const = default;

private:
  explicit BluetoothAddress(const std::array<std::uint8_t, 6>& bytes) : bytes_(bytes) {}

  std::array<std::uint8_t, 6> bytes_;
};

// Whether two texts name the same address, however each is written.
inline bool sameBluetoothAddress(std::string_view a, std::string_view b) {
  auto left = BluetoothAddress::parse(a);
  return left && left == BluetoothAddress::parse(b);
}

} // namespace lb
