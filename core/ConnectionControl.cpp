#include "core/ConnectionControl.h"

#include "core/ConnectionTracker.h"
#include "core/LogAreas.h"
#include "core/OutputFixer.h"
#include "core/Texts.h"

namespace lb {

bool ConnectionControl::refusesDisconnecting(bool connected, bool evenInConnectOnlyMode) const {
  if (!connected || evenInConnectOnlyMode || !options_.connectionOnlyMode()) return false;
  connectLog()([&] { return "Tried to disconnect from " + device_.description() + " but in connection-only mode"; });
  return true;
}

// The closures hold the device's lifetime, and with it this part's, until
// they have run.
void ConnectionControl::toggle(std::shared_ptr<BluetoothDevice> device, bool evenInConnectOnlyMode) {
  busy_ = true;
  loop_.runOnWorker([this, alive = device_.lifetime().lock(), device = std::move(device), evenInConnectOnlyMode] {
    const bool connected = device->isConnected();
    if (refusesDisconnecting(connected, evenInConnectOnlyMode)) {
      loop_.post([this, alive] {
        busy_ = false;
        device_.stopProgress();
      });
      return;
    }
    if (connected) {
      loop_.post([this, alive] { outputFixer_.willManuallyDisconnect(); });
      closeConnection();
    } else {
      inputDeviceManager_.rememberCurrentDevice("about to connect from Lanternbud");
      openConnection();
    }
    // Whatever the attempt's end (BlueZ may say "already connected" of a
    // link not yet reported), the spinner stops with it, unless a time-out
    // is still being waited out.
    loop_.post([this, alive] {
      busy_ = false;
      tracker_.updateConnectionState(ConnectionUpdateReason::toggle());
      if (!judgingTimeout_) device_.stopProgress();
    });
  });
}

void ConnectionControl::openConnection() {
  auto found = device_.device();
  if (!found) return;
  isManuallyInitiatedConnection_ = true;
  const auto fixerState = [this] { return outputFixer_.state(); };
  IOReturn result;
  if (tunables_(tunable::TrySyncConnectFirst)) {
    if (found->isConnected()) {
      PXR_LOG(connectLog(), "Already connected to", device_.description(), fixerState());
      return;
    }
    PXR_LOG(connectLog(), "Begin sync connecting to", device_.description(), fixerState());
    result = found->openConnection();
    if (pxrIsSuccess(result)) {
      PXR_LOG(connectLog(), "End sync connecting to", device_.description(), fixerState());
      return;
    }
    connectLog()([&] {
      return "Error sync connecting to " + device_.description() + " with status: " + pxrDescription(result);
    });
  } else {
    PXR_LOG(connectLog(), "Begin connecting to", device_.description());
    result = found->openConnection(10000);
    if (pxrIsSuccess(result)) {
      PXR_LOG(connectLog(), "End connecting to", device_.description());
      return;
    }
  }

  PXR_LOG(connectLog(), "Retry connecting to", device_.description());
  result = found->openConnection(20000);
  if (pxrIsSuccess(result)) {
    connectLog()(
        [&] { return "End retry connecting to " + device_.description() + " with status: " + pxrDescription(result); });
    return;
  }
  if (pxrIsBluetoothAlreadyConnected(result)) {
    PXR_LOG_ERROR("It looks like " + device_.description() + " is already connected: " + pxrDescription(result));
  } else if (pxrIsPossiblySpuriousBluetoothTimeout(result) && operatingSystem_.hasSpuriousConnectionTimeouts()) {
    PXR_LOG_ERROR("Error " + pxrDescription(result) + " connecting to " + device_.description() +
                  "; will wait and see if this ends up being spurious.");
    judgingTimeout_ = true;
    loop_.postAfter(tunables_(tunable::ConnectionWaitInterval), [this, alive = device_.lifetime().lock(), found,
                                                                 result] { checkForDelayedConnection(found, result); });
  } else {
    PXR_LOG_ERROR("Error " + pxrDescription(result) + " connecting to " + device_.description());
    showConnectionErrorAlert(result);
  }
}

void ConnectionControl::checkForDelayedConnection(const std::shared_ptr<BluetoothDevice>& found,
                                                  const IOReturn& result) {
  judgingTimeout_ = false;
  if (found->isConnected()) {
    PXR_LOG_ERROR("Error " + pxrDescription(result) + " connecting to " + device_.description() + " was spurious");
    device_.stopProgress();
    return;
  }
  PXR_LOG_ERROR("Error " + pxrDescription(result) + " connecting to " + device_.description() + " was real");
  showConnectionErrorAlert(result);
}

void ConnectionControl::closeConnection() {
  auto found = device_.device();
  if (!found) return;
  PXR_LOG(connectLog(), "Begin disconnecting from", device_.description());
  auto result = found->closeConnection();
  if (pxrIsSuccess(result)) {
    connectLog()(
        [&] { return "End disconnecting from " + device_.description() + " with status: " + pxrDescription(result); });
    loop_.post([this, alive = device_.lifetime().lock()] { outputFixer_.didDisconnect(); });
  } else {
    PXR_LOG_ERROR("Error " + pxrDescription(result) + " disconnecting from " + device_.description());
  }
}

void ConnectionControl::showConnectionErrorAlert(const IOReturn& result) {
  loop_.post([this, alive = device_.lifetime().lock(), result] {
    const bool settled = !outputFixer_.isRetrying();
    outputFixer_.didFailToConnect();
    device_.stopProgress();
    // While the fixer is itself closing and reopening the connection, its
    // failures are no news to the user.
    if (!settled) return;
    if (alerts_.runModal(connectionErrorAlert(result)) == 1) alerts_.openHelpPage("not-connecting");
  });
}

Alert ConnectionControl::connectionErrorAlert(const IOReturn& result) const {
  Alert alert;
  alert.message = formatted(localized("Your Mac could not connect to “%@”."), device_.deviceNameOrUnknown());
  alert.buttons = {localized("OK"), localized("Help")};
  if (pxrIsBluetoothTimeout(result)) {
    alert.informativeText = localized("The Bluetooth connection timed out.");
  } else if (pxrIsBluetoothOffline(result)) {
    alert.informativeText =
        operatingSystem_.usesSettingsWording()
            ? localized("Please make sure that Bluetooth is enabled in the Bluetooth pane in System Settings.")
            : localized("Please make sure that Bluetooth is On in the Bluetooth pane in System Preferences.");
  } else {
    // What the Bluetooth service said, where it said something; the code
    // means something only to a developer, and stays in the log.
    alert.informativeText = formatted(localized("Bluetooth reported error %@."),
                                      result.detail.empty() ? pxrDescription(result) : result.detail);
  }
  return alert;
}

} // namespace lb
