#include "core/ConnectionTracker.h"

#include "core/ConnectionControl.h"
#include "core/DeviceScripts.h"
#include "core/LogAreas.h"
#include "core/OutputFixer.h"

namespace lb {

using namespace std::chrono_literals;

namespace {
std::string describe(const std::optional<bool>& value) { return pxrDescribe(value); }
} // namespace

std::function<void()> ConnectionTracker::updateLater(ConnectionUpdateReason reason) {
  return [this, weak = device_.lifetime(), reason = std::move(reason)] {
    if (const auto alive = weak.lock()) updateConnectionState(reason);
  };
}

void ConnectionTracker::startTimer() {
  if (!tunables_(tunable::ConnectionUpdateUseTimer)) return;
  timer_ = std::make_unique<PXRTimer>(tunables_(tunable::ConnectionUpdateTimerInterval), true,
                                      updateLater(ConnectionUpdateReason::timer()));
  timer_->schedule(loop_);
}

void ConnectionTracker::registerNotifications() {
  disconnectObserver_.reset();
  if (tunables_(tunable::DeviceSettingDisableDisconnectObservation)) return;
  auto found = device_.device();
  if (!found) return;
  disconnectObserver_ = bluetooth_.registerForDisconnectNotification(
      *found, [this, weak = device_.lifetime()](const BluetoothNotification& notification,
                                                const std::shared_ptr<BluetoothDevice>& gone) {
        if (const auto alive = weak.lock()) deviceDisconnected(notification, gone);
      });
}

void ConnectionTracker::deviceConnected(const BluetoothNotification& notification) {
  PXR_LOG(notificationsLog(), "Device connected:", device_.description(), outputFixer_.state());
  loop_.postAfter(100ms, updateLater(ConnectionUpdateReason::connectedNotification(notification)));
}

void ConnectionTracker::deviceDisconnected(const BluetoothNotification& notification,
                                           const std::shared_ptr<BluetoothDevice>& gone) {
  PXR_LOG(notificationsLog(), "deviceDisconnected notification:", notification, "device:", device_.description(),
          outputFixer_.state());
  device_.stopProgress();
  if (!gone) {
    PXR_LOG_ERROR("Nil device disconnected:", notification);
    return;
  }
  loop_.post([this, weak = device_.lifetime(), notification] {
    const auto alive = weak.lock();
    if (!alive) return;
    outputFixer_.didDisconnect();
    updateConnectionState(ConnectionUpdateReason::disconnectedNotification(notification));
  });
}

void ConnectionTracker::updateConnectionState(const ConnectionUpdateReason& reason) {
  auto found = device_.device();
  if (!found) return;
  const auto wasConnected = isConnected_;
  const auto wasAudioOutput = isAudioOutput_;
  const auto wasPotentialAudioOutput = isPotentialAudioOutput_;
  if (found->isConnected()) {
    // A new connection reads battery levels afresh; later updates keep the
    // cached ones for their staleness interval.
    if (wasConnected != true) deviceInfoCache_.remove(&device_);
    isConnected_ = true;
    if (tunables_(tunable::EnableAudioOutput)) {
      if (isPotentialAudioOutput_ != true) isPotentialAudioOutput_ = outputDeviceManager_.isPotentialOutput(device_);
      if (isPotentialAudioOutput_ == true) isAudioOutput_ = outputDeviceManager_.isCurrent(device_);
    }
  } else {
    isConnected_ = false;
    isAudioOutput_ = false;
    awaitedOutput_.reset();
  }
  const auto because = [&] { return " " + device_.description() + " because " + reason.description(); };
  if (isConnected_ != wasConnected) {
    isConnectedLog()([&] { return "isConnected is now " + describe(isConnected_) + because(); });
    if (!wasConnected) {
      connectLog()([&] {
        return "Previous connection state was unknown: " + device_.description() +
               " so won't run script or change input";
      });
    } else if (*isConnected_) {
      reactToConnection();
    } else {
      reactToDisconnection();
    }
    device_.stopProgress();
  }
  if (awaitedOutput_ && isPotentialAudioOutput_ == true) setAwaitedOutput();
  if (isAudioOutput_ != wasAudioOutput) {
    outputLog()([&] { return "isAudioOutput is now " + describe(isAudioOutput_) + because(); });
    if (isAudioOutput_ == true) {
      outputFixer_.didDetectCorrectAudioOutput();
      reactToSettingAudioOutput();
    }
    device_.updateButtonImage();
  }
  if (isPotentialAudioOutput_ != wasPotentialAudioOutput) {
    outputLog()([&] { return "isPotentialAudioOutput is now " + describe(isPotentialAudioOutput_) + because(); });
    device_.updateButtonImage();
  }
}

void ConnectionTracker::reactToConnection() {
  connectLog()([&] { return "Was not already connected: " + device_.description() + " so will try script and input"; });
  fastTimer_ = std::make_unique<PXRTimer>(tunables_(tunable::ConnectionUpdateFastTimerInterval), true,
                                          updateLater(ConnectionUpdateReason::fastTimer()));
  fastTimer_->schedule(loop_);
  // Each connection schedules one drop, which ends whatever fast timer is
  // running by then, even one that a later connection started.
  loop_.postAfter(tunables_(tunable::ConnectionUpdateFastTimerDuration), [this, weak = device_.lifetime()] {
    if (const auto alive = weak.lock()) fastTimer_.reset();
  });

  if (connection_.isManuallyInitiatedConnection()) {
    if (tunables_(tunable::EnableAutoSettingAudioOutput)) setOutputForManualConnection();
    connection_.setManuallyInitiatedConnection(false);
  }

  const bool deferToOutput = isPotentialAudioOutput_ == true &&
                             tunables_(tunable::RunConnectionScriptWhenSettingAudioOutput);
  if (!deferToOutput) {
    scriptLog()([&] {
      return "Connect script because potential " + describe(isPotentialAudioOutput_) + " and output setting " +
             pxrDescribe(tunables_(tunable::RunConnectionScriptWhenSettingAudioOutput)) + ": " + device_.description();
    });
    lastConnectionScriptRun_ = loop_.now();
    scripts_.run(ScriptType::connected);
  }
  if (options_.keepDefaultAudioInput()) inputDeviceManager_.restoreLast();
}

void ConnectionTracker::audioDevicesChanged() {
  if (isConnected_ == true) updateConnectionState(ConnectionUpdateReason::audioDevicesChanged());
}

// An audio device still to appear (Linux makes it after the link) is
// waited for; one that will not, because the device is no audio device,
// counts as set by the system.
void ConnectionTracker::setOutputForManualConnection() {
  const auto device = device_.device();
  const bool mayBecomeOutput = tunables_(tunable::EnableAudioOutput) && device &&
                               device->majorDeviceClass() == OutputDeviceManager::audioMajorClass;
  if (isAudioOutput_ != true && isPotentialAudioOutput_ == true && outputDeviceManager_.isPotentialOutput(device_)) {
    setOutputBecauseManual();
  } else if (isAudioOutput_ != true && mayBecomeOutput) {
    awaitOutput();
  } else {
    outputFixer_.didAutomaticallySetAudioOutput();
    outputLog()([&] {
      return "No need to set sound output device because it was already set automatically: " + device_.description();
    });
  }
}

void ConnectionTracker::setOutputBecauseManual() {
  outputLog()([&] {
    return "Setting sound output device because connection was manually initiated: " + device_.description();
  });
  setDefaultAudioOutput();
}

void ConnectionTracker::awaitOutput() {
  const auto window = tunables_(tunable::ManualConnectionAudioOutputWindow);
  outputLog()([&] {
    return "Waiting up to " + pxrDescribe(window.count()) + " s for the sound output device of " +
           device_.description();
  });
  awaitedOutput_ = ++outputWaits_;
  loop_.postAfter(window, [this, weak = device_.lifetime(), wait = *awaitedOutput_] {
    if (const auto alive = weak.lock()) endOutputWait(wait);
  });
}

// The device's audio device is listed now, or it became the output by other means.
void ConnectionTracker::setAwaitedOutput() {
  if (isAudioOutput_ == true) {
    awaitedOutput_.reset();
  } else if (outputDeviceManager_.isPotentialOutput(device_)) {
    awaitedOutput_.reset();
    setOutputBecauseManual();
  }
}

// No audio device came: the set fails, and the output fixer reconnects.
void ConnectionTracker::endOutputWait(std::uint64_t wait) {
  if (awaitedOutput_ != wait) return;
  awaitedOutput_.reset();
  PXR_LOG_ERROR("No sound output device appeared in time for", device_.description());
  setDefaultAudioOutput();
}

void ConnectionTracker::reactToDisconnection() {
  connectLog()([&] { return "Device disconnected: " + device_.description(); });
  if (outputFixer_.didDisconnect()) return;
  scripts_.run(ScriptType::disconnected);
  inputDeviceManager_.rememberCurrentDevice("disconnected");
}

bool ConnectionTracker::setOutputInsteadOfDisconnecting(const BluetoothDevice& device) {
  if (!device.isConnected() || !tunables_(tunable::EnableAudioOutput) || isAudioOutput_ != false ||
      isPotentialAudioOutput_ != true) {
    return false;
  }
  connectLog()([&] { return "Already connected but trying to set audio output: " + device_.description(); });
  if (tunables_(tunable::RememberAudioInputWhenSettingAudioOutput)) {
    inputDeviceManager_.rememberCurrentDevice("setting output device");
  }
  setDefaultAudioOutput();
  return true;
}

void ConnectionTracker::setDefaultAudioOutput() {
  try {
    outputDeviceManager_.setCurrent(device_);
    outputFixer_.didManuallySetAudioOutput();
  } catch (const AudioError& error) {
    // Other failures were logged where they happened; only a missing device
    // can be repaired by reconnecting.
    if (error.kind() == AudioError::Kind::noMatchingAudioDevice) outputFixer_.didFailToSetAudioOutput();
  }
}

void ConnectionTracker::reactToSettingAudioOutput() {
  if (tunables_(tunable::FixAudioInputWhenSettingAudioOutput) && options_.keepDefaultAudioInput()) {
    PXR_LOG(inputLog(), "Fixing audio input because audio output was set to:", device_.description());
    inputDeviceManager_.restoreLast();
  }
  if (!tunables_(tunable::RunConnectionScriptWhenSettingAudioOutput)) return;
  const auto now = loop_.now();
  if (lastConnectionScriptRun_ &&
      std::chrono::abs(timeBetween(*lastConnectionScriptRun_, now)) < tunables_(tunable::ConnectionScriptInterval)) {
    PXR_LOG(scriptLog(), "Skipping connect script because audio output set because just ran:", device_.description());
    return;
  }
  PXR_LOG(scriptLog(), "Connect script because audio output set:", device_.description());
  lastConnectionScriptRun_ = now;
  scripts_.run(ScriptType::connected);
}

} // namespace lb
