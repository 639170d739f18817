#include "ports/IOReturn.h"

#include <array>

namespace lb {

namespace {

using Code = IOReturn::Code;
using Subsystem = IOReturn::Subsystem;

struct CodeInfo {
  Code code;
  Subsystem subsystem;
  std::string_view name;
};

constexpr std::array<CodeInfo, 5> codes{{
    {Code::kBluetoothHCIErrorPageTimeout, Subsystem::sub_iokit_bluetooth, "kBluetoothHCIErrorPageTimeout"},
    {Code::kBluetoothHCIErrorACLConnectionAlreadyExists, Subsystem::sub_iokit_bluetooth,
     "kBluetoothHCIErrorACLConnectionAlreadyExists"},
    {Code::kIOReturnNoDevice, Subsystem::sub_iokit_common, "kIOReturnNoDevice"},
    {Code::kIOReturnTimeout, Subsystem::sub_iokit_common, "kIOReturnTimeout"},
    {Code::kIOReturnOffline, Subsystem::sub_iokit_common, "kIOReturnOffline"},
}};

const CodeInfo* infoFor(std::int32_t code) {
  for (const auto& info : codes) {
    if (static_cast<std::int32_t>(info.code) == code) return &info;
  }
  return nullptr;
}

} // namespace

IOReturn IOReturn::make(Subsystem subsystem, std::int32_t code, std::string detail) {
  auto bits = (std::uint32_t{56} << 26) | (static_cast<std::uint32_t>(subsystem) << 14) |
              (static_cast<std::uint32_t>(code) & 0x3fff);
  return {static_cast<std::int32_t>(bits), std::move(detail)};
}

IOReturn IOReturn::make(Code code, std::string detail) {
  const auto number = static_cast<std::int32_t>(code);
  return make(infoFor(number)->subsystem, number, std::move(detail));
}

IOReturn IOReturn::generalError(std::string detail) {
  return make(Subsystem::sub_iokit_common, generalErrorCode, std::move(detail));
}

std::optional<IOReturn::Code> IOReturn::namedCode() const {
  if (auto info = infoFor(code())) return info->code;
  return std::nullopt;
}

std::string pxrDescription(IOReturn::System) { return "err_sys"; }

std::string pxrDescription(IOReturn::Subsystem value) {
  return value == Subsystem::sub_iokit_common ? "sub_iokit_common" : "sub_iokit_bluetooth";
}

std::string pxrDescription(IOReturn::Code value) {
  if (auto info = infoFor(static_cast<std::int32_t>(value))) return std::string(info->name);
  return std::to_string(static_cast<std::int32_t>(value));
}

std::string pxrDescription(const IOReturn& r) {
  std::string system = r.system() == 56 ? pxrDescriptionWithRaw(IOReturn::System::err_sys) : std::to_string(r.system());
  std::string subsystem = r.subsystem() == 0 || r.subsystem() == 8
                              ? pxrDescriptionWithRaw(static_cast<Subsystem>(r.subsystem()))
                              : std::to_string(r.subsystem());
  auto named = r.namedCode();
  std::string code = named ? pxrDescriptionWithRaw(*named) : std::to_string(r.code());
  std::string text = "IOReturn " + std::to_string(r.value) + " (" + system + ", " + subsystem + ", " + code + ")";
  if (!r.detail.empty()) text += ": " + r.detail;
  return text;
}

} // namespace lb
