#pragma once

#include "foundation/Printing.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lb {

// The 32-bit result of a Bluetooth call: system (bits 26-31), subsystem
// (14-25) and code (0-13). Backends map their own errors onto these codes so
// that the program has one error model, and may attach their own text (such
// as BlueZ's "br-connection-page-timeout") for logs and the error dialog.
struct IOReturn {
  std::int32_t value = 0;
  std::string detail;

  enum class System : std::int32_t { err_sys = 56 };
  enum class Subsystem : std::int32_t { sub_iokit_common = 0, sub_iokit_bluetooth = 8 };
  // The codes the program tells apart; each belongs to one subsystem (see
  // the table in IOReturn.cpp).
  enum class Code : std::int32_t {
    kBluetoothHCIErrorPageTimeout = 4,
    kBluetoothHCIErrorACLConnectionAlreadyExists = 11,
    kIOReturnNoDevice = 704,
    kIOReturnTimeout = 726,
    kIOReturnOffline = 727,
  };
  // A failure none of the codes describes.
  static constexpr std::int32_t generalErrorCode = 700;

  // The result of that code, in its subsystem.
  static IOReturn make(Code code, std::string detail = {});
  static IOReturn generalError(std::string detail = {});
  static IOReturn make(Subsystem subsystem, std::int32_t code, std::string detail = {});
  static IOReturn success() { return {}; }

  std::int32_t system() const { return static_cast<std::int32_t>((static_cast<std::uint32_t>(value) >> 26) & 0x3f); }
  std::int32_t subsystem() const {
    return static_cast<std::int32_t>((static_cast<std::uint32_t>(value) >> 14) & 0xfff);
  }
  std::int32_t code() const { return static_cast<std::int32_t>(static_cast<std::uint32_t>(value) & 0x3fff); }
  // The named code, when the code field holds one.
  std::optional<Code> namedCode() const;
  bool is(Code wanted) const { return namedCode() == wanted; }
};

std::string pxrDescription(IOReturn::System value);
std::string pxrDescription(IOReturn::Subsystem value);
std::string pxrDescription(IOReturn::Code value);

// These look at the code field only.
inline bool pxrIsSuccess(const IOReturn& r) { return r.value == 0; }
inline bool pxrIsBluetoothAlreadyConnected(const IOReturn& r) {
  return r.is(IOReturn::Code::kBluetoothHCIErrorACLConnectionAlreadyExists);
}
// A time-out after which the connection is sometimes made all the same.
inline bool pxrIsPossiblySpuriousBluetoothTimeout(const IOReturn& r) { return r.is(IOReturn::Code::kIOReturnTimeout); }
inline bool pxrIsBluetoothTimeout(const IOReturn& r) {
  return r.is(IOReturn::Code::kBluetoothHCIErrorPageTimeout) || r.is(IOReturn::Code::kIOReturnTimeout);
}
inline bool pxrIsBluetoothOffline(const IOReturn& r) { return r.is(IOReturn::Code::kIOReturnOffline); }

// "IOReturn -536870186 (56=0x38=err_sys, 0=0x0=sub_iokit_common,
// 726=0x2d6=kIOReturnTimeout)", then the backend's text if it gave one.
std::string pxrDescription(const IOReturn& r);

} // namespace lb
