#include "linux/bluez/BluezErrors.h"

#include "linux/bluez/BluezNames.h"

#include <algorithm>
#include <cctype>

namespace lb {

IOReturn bluezResult(const std::string& errorName, const std::string& message) {
  using Code = IOReturn::Code;
  // A service's message is cut short: it reaches log lines and dialogs.
  const std::string shortMessage = message.size() <= 200 ? message : message.substr(0, 200) + "…";
  const std::string detail = message.empty() ? errorName : errorName + ": " + shortMessage;
  auto is = [&](const char* name) { return errorName == name; };
  auto mentions = [&](const char* text) { return message.find(text) != std::string::npos; };

  if (is(bluez::errorFailed) && (mentions("Page Timeout") || mentions("br-connection-page-timeout"))) {
    return IOReturn::make(Code::kBluetoothHCIErrorPageTimeout, detail);
  }
  if (is(bluez::errorAlreadyConnected))
    return IOReturn::make(Code::kBluetoothHCIErrorACLConnectionAlreadyExists, detail);
  if (is("org.freedesktop.DBus.Error.UnknownObject") || is("org.freedesktop.DBus.Error.UnknownMethod") ||
      is("org.freedesktop.DBus.Error.ServiceUnknown") || is(bluez::errorDoesNotExist)) {
    return IOReturn::make(Code::kIOReturnNoDevice, detail);
  }
  if (is("org.freedesktop.DBus.Error.NoReply") || is("org.freedesktop.DBus.Error.Timeout") ||
      is("org.freedesktop.DBus.Error.TimedOut")) {
    return IOReturn::make(Code::kIOReturnTimeout, detail);
  }
  if (is(bluez::errorNotReady)) return IOReturn::make(Code::kIOReturnOffline, detail);
  return IOReturn::generalError(detail);
}

} // namespace lb
