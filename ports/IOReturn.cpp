#include "ports/IOReturn.h"

namespace lb {

std::string pxrDescription(IOReturn::System) { return "err_sys"; }

std::string pxrDescription(IOReturn::Subsystem value) {
  return value == IOReturn::Subsystem::sub_iokit_common ? "sub_iokit_common" : "sub_iokit_bluetooth";
}

std::string pxrDescription(IOReturn::Code value) {
  switch (value) {
  case IOReturn::Code::kBluetoothHCIErrorPageTimeout: return "kBluetoothHCIErrorPageTimeout";
  case IOReturn::Code::kBluetoothHCIErrorACLConnectionAlreadyExists: return "kBluetoothHCIErrorACLConnectionAlreadyExists";
  case IOReturn::Code::kIOReturnNoDevice: return "kIOReturnNoDevice";
  case IOReturn::Code::kIOReturnTimeout: return "kIOReturnTimeout";
  case IOReturn::Code::kIOReturnOffline: return "kIOReturnOffline";
  }
  return std::to_string(static_cast<std::int32_t>(value));
}

std::string pxrDescription(const IOReturn& r) {
  using Code = IOReturn::Code;
  std::string system = r.system() == 56 ? pxrDescriptionWithRaw(IOReturn::System::err_sys) : std::to_string(r.system());
  std::string subsystem = r.subsystem() == 0 || r.subsystem() == 8
                              ? pxrDescriptionWithRaw(static_cast<IOReturn::Subsystem>(r.subsystem()))
                              : std::to_string(r.subsystem());
  std::string code;
  switch (r.code()) {
  case 4: case 11: case 704: case 726: case 727:
    code = pxrDescriptionWithRaw(static_cast<Code>(r.code()));
    break;
  default:
    code = std::to_string(r.code());
  }
  std::string text = "IOReturn " + std::to_string(r.value) + " (" + system + ", " + subsystem + ", " + code + ")";
  if (!r.detail.empty()) text += ": " + r.detail;
  return text;
}

} // namespace lb
