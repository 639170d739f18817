#pragma once

namespace lb {

// What a request to toggle, connect or disconnect a device did.
enum class ConnectionOutcome {
  connecting,     // a connect is under way
  disconnecting,  // a disconnect is under way
  settingOutput,  // a connected headset became the sound output instead of disconnecting
  showingMenu,    // the click opened the item's menu
  unchanged,      // the device is in the state asked for already
  busy,           // an attempt for the device is under way: the request is ignored
  connectionOnly, // the device is never disconnected
  noDevice,       // the system has no device at the stored address
};

} // namespace lb
