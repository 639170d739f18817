#pragma once

#include "core/ConnectionUpdateReason.h"
#include "core/DeviceHandle.h"
#include "core/DeviceOptions.h"
#include "core/InputDeviceManager.h"
#include "core/OutputDeviceManager.h"
#include "core/Services.h"
#include "core/Tunables.h"
#include "foundation/PXRTimer.h"
#include "ports/Bluetooth.h"
#include "ports/EventLoop.h"

#include <memory>
#include <optional>

namespace lb {

class ConnectionControl;
class DeviceScripts;
class OutputFixer;

// Follows one device's connection and sound output, and reacts to their
// changes: the sound output and input, the scripts, the output fixer, the
// picture. The observed states are unknown until first seen. Main thread.
class ConnectionTracker {
public:
  ConnectionTracker(DeviceHandle& device, const DeviceOptions& options, ConnectionControl& connection,
                    OutputFixer& outputFixer, DeviceScripts& scripts, EventLoop& loop, const Tunables& tunables,
                    Bluetooth& bluetooth, OutputDeviceManager& outputDeviceManager,
                    InputDeviceManager& inputDeviceManager, DeviceInfoCache& deviceInfoCache)
      : device_(device), options_(options), connection_(connection), outputFixer_(outputFixer), scripts_(scripts),
        loop_(loop), tunables_(tunables), bluetooth_(bluetooth), outputDeviceManager_(outputDeviceManager),
        inputDeviceManager_(inputDeviceManager), deviceInfoCache_(deviceInfoCache) {}

  std::optional<bool> isConnected() const { return isConnected_; }
  std::optional<bool> isAudioOutput() const { return isAudioOutput_; }
  std::optional<bool> isPotentialAudioOutput() const { return isPotentialAudioOutput_; }

  // The slow timer, every "ConnectionUpdateTimerInterval".
  void startTimer();

  // (Re)registers the device's disconnect notification; `unregister` drops it.
  void registerNotifications();
  void unregisterNotifications() { disconnectObserver_.reset(); }
  void deviceConnected(const BluetoothNotification& notification);
  void deviceDisconnected(const BluetoothNotification& notification, const std::shared_ptr<BluetoothDevice>& device);

  // The one place where a change of the connection is noticed.
  void updateConnectionState(const ConnectionUpdateReason& reason);
  // The audio system's devices or defaults changed.
  void audioDevicesChanged();

  // A click on a connected device that could be, and is not, the sound
  // output makes it the output instead of disconnecting. True when so.
  bool setOutputInsteadOfDisconnecting(const BluetoothDevice& device);

  // Makes the device the sound output; a device the audio system does not
  // list goes to the output fixer.
  void setDefaultAudioOutput();
  // The output is this device now: restore the input if asked, and run the
  // connect script, spaced by "ConnectionScriptInterval".
  void reactToSettingAudioOutput();

  std::optional<Date> lastConnectionScriptRun() const { return lastConnectionScriptRun_; }
  bool hasFastTimer() const { return fastTimer_ != nullptr; }

private:
  void reactToConnection();
  void setOutputForManualConnection();
  void setOutputBecauseManual();
  // A connection the user started waits a while for its audio device to
  // appear; the output is set the moment it does.
  void awaitOutput();
  void setAwaitedOutput();
  void endOutputWait(std::uint64_t wait);
  void reactToDisconnection();
  // A timer tick or delayed task that updates the state, holding the
  // device's lifetime weakly.
  std::function<void()> updateLater(ConnectionUpdateReason reason);

  DeviceHandle& device_;
  const DeviceOptions& options_;
  ConnectionControl& connection_;
  OutputFixer& outputFixer_;
  DeviceScripts& scripts_;
  EventLoop& loop_;
  const Tunables& tunables_;
  Bluetooth& bluetooth_;
  OutputDeviceManager& outputDeviceManager_;
  InputDeviceManager& inputDeviceManager_;
  DeviceInfoCache& deviceInfoCache_;

  std::optional<bool> isConnected_;
  std::optional<bool> isAudioOutput_;
  std::optional<bool> isPotentialAudioOutput_;
  std::optional<Date> lastConnectionScriptRun_;
  std::optional<std::uint64_t> awaitedOutput_; // the wait under way
  std::uint64_t outputWaits_ = 0;
  std::unique_ptr<PXRTimer> timer_;
  std::unique_ptr<PXRTimer> fastTimer_;
  std::unique_ptr<NotificationRegistration> disconnectObserver_;
};

} // namespace lb
