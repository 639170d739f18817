#pragma once

#include "core/DeviceHandle.h"
#include "core/DeviceOptions.h"
#include "core/InputDeviceManager.h"
#include "core/Tunables.h"
#include "ports/Alerts.h"
#include "ports/EventLoop.h"
#include "ports/IOReturn.h"
#include "ports/OperatingSystem.h"

#include <atomic>
#include <memory>

namespace lb {

class BluetoothDevice;
class ConnectionTracker;
class OutputFixer;

// The part of a device setting that works on a worker thread: the blocking
// connect and disconnect of a toggle, and what follows their failures. Its
// work holds the device's lifetime, so that a device removed while being
// connected stays alive until the work ends; results go back to the main
// thread with `post`, where the tracker takes up the new state.
class ConnectionControl {
public:
  ConnectionControl(DeviceHandle& device, const DeviceOptions& options, OutputFixer& outputFixer,
                    ConnectionTracker& tracker, EventLoop& loop, const Tunables& tunables,
                    OperatingSystem& operatingSystem, Alerts& alerts, InputDeviceManager& inputDeviceManager)
      : device_(device), options_(options), outputFixer_(outputFixer), tracker_(tracker), loop_(loop),
        tunables_(tunables), operatingSystem_(operatingSystem), alerts_(alerts),
        inputDeviceManager_(inputDeviceManager) {}

  // Connects or disconnects `device` on a worker, then updates the state.
  void toggle(std::shared_ptr<BluetoothDevice> device, bool evenInConnectOnlyMode = false);
  // From a toggle until its state update: main thread.
  bool isBusy() const { return busy_; }
  // Whether connection-only mode keeps a connected device connected, unless
  // the user asked for this disconnect by name; with its log line. The one
  // place that decides it, on the main thread and again on the worker.
  bool refusesDisconnecting(bool connected, bool evenInConnectOnlyMode) const;

  // Blocking: a synchronous attempt, then a retry with a long page timeout.
  void openConnection();
  // Blocking.
  void closeConnection();
  // After a time-out that may be spurious: connected now, or a real failure.
  void checkForDelayedConnection(const std::shared_ptr<BluetoothDevice>& device, const IOReturn& result);
  // Shows the connection error dialog on the main thread, unless the output
  // fixer is in the middle of a repair.
  void showConnectionErrorAlert(const IOReturn& result);
  Alert connectionErrorAlert(const IOReturn& result) const;

  // Set by every connect attempt; the reaction to the connection uses it up.
  bool isManuallyInitiatedConnection() const { return isManuallyInitiatedConnection_; }
  void setManuallyInitiatedConnection(bool value) { isManuallyInitiatedConnection_ = value; }

private:
  DeviceHandle& device_;
  const DeviceOptions& options_;
  OutputFixer& outputFixer_;
  ConnectionTracker& tracker_;
  EventLoop& loop_;
  const Tunables& tunables_;
  OperatingSystem& operatingSystem_;
  Alerts& alerts_;
  InputDeviceManager& inputDeviceManager_;
  std::atomic<bool> isManuallyInitiatedConnection_ = false;
  std::atomic<bool> judgingTimeout_ = false; // set on the worker, read on the main thread
  bool busy_ = false;
};

} // namespace lb
