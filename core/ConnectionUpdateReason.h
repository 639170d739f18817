#pragma once

#include "ports/Bluetooth.h"

#include <optional>
#include <string>

namespace lb {

// Why a connection-state update runs; it only appears in log lines.
struct ConnectionUpdateReason {
  enum class Kind {
    connectedNotification,
    disconnectedNotification,
    becameActive,
    timer,
    fastTimer,
    toggle,
    audioDevicesChanged,
  };

  Kind kind;
  std::optional<BluetoothNotification> notification; // with the two notification kinds

  static ConnectionUpdateReason connectedNotification(BluetoothNotification n) {
    return {Kind::connectedNotification, std::move(n)};
  }
  static ConnectionUpdateReason disconnectedNotification(BluetoothNotification n) {
    return {Kind::disconnectedNotification, std::move(n)};
  }
  static ConnectionUpdateReason becameActive() { return {Kind::becameActive, std::nullopt}; }
  static ConnectionUpdateReason timer() { return {Kind::timer, std::nullopt}; }
  static ConnectionUpdateReason fastTimer() { return {Kind::fastTimer, std::nullopt}; }
  static ConnectionUpdateReason toggle() { return {Kind::toggle, std::nullopt}; }
  static ConnectionUpdateReason audioDevicesChanged() { return {Kind::audioDevicesChanged, std::nullopt}; }

  // The case name; a notification's description follows in parentheses.
  std::string description() const {
    static constexpr const char* names[] = {
        "connectedNotification", "disconnectedNotification", "becameActive", "timer", "fastTimer", "toggle",
        "audioDevicesChanged"};
    std::string text = names[static_cast<int>(kind)];
    if (notification) text += "(" + notification->description() + ")";
    return text;
  }
};

} // namespace lb
