#include "core/OutputFixer.h"

#include "core/ConnectionControl.h"
#include "core/ConnectionTracker.h"
#include "core/LogAreas.h"

namespace lb {

std::string OutputFixer::State::description() const {
  switch (kind) {
  case Kind::waitingToDisconnect: return "waitingToDisconnect(" + std::to_string(tries) + ")";
  case Kind::waitingToReconnect: return "waitingToReconnect(" + std::to_string(tries) + ")";
  case Kind::initial: return "initial";
  case Kind::ok: return "ok";
  case Kind::gaveUp: return "gaveUp";
  }
  return "unknown";
}

bool OutputFixer::isRetrying() const {
  auto kind = state().kind;
  return kind == State::Kind::waitingToDisconnect || kind == State::Kind::waitingToReconnect;
}

void OutputFixer::setOk(const char* because) {
  state_.setValue(State::ok());
  PXR_LOG(outputFixerLog(), std::string("Setting state to .ok because ") + because, device_.description());
}

void OutputFixer::didDetectCorrectAudioOutput() { setOk("detected correct audio output"); }
void OutputFixer::didAutomaticallySetAudioOutput() { setOk("automatically set audio output"); }
void OutputFixer::didManuallySetAudioOutput() { setOk("manually set audio output"); }
void OutputFixer::willManuallyDisconnect() { setOk("will manually disconnect"); }
void OutputFixer::didFailToConnect() { setOk("failed to connect/reconnect"); }

void OutputFixer::didFailToSetAudioOutput() {
  const State current = state();
  PXR_LOG(outputFixerLog(), "Failed to set audio output with state", current, device_.description());
  if (!services_.tunables(tunable::WorkAroundMissingAudioDevice)) return;
  // Without a sound server no reconnection brings the output: the device
  // stays connected, and any repair under way ends.
  if (!services_.outputDeviceManager.serverAnswers()) {
    PXR_LOG_ERROR("No sound server answers, so", device_.description(),
                  "stays connected without being made the sound output.");
    setOk("no sound server answers");
    return;
  }

  switch (current.kind) {
  case State::Kind::waitingToDisconnect:
    PXR_LOG_ERROR("Unexpectedly tried to set audio output while waiting to disconnect", current, device_.description());
    return;
  case State::Kind::waitingToReconnect:
    if (current.tries < 1) {
      PXR_LOG_ERROR("Gave up trying to fix audio output:", device_.description());
      state_.setValue(State::gaveUp());
      return;
    }
    PXR_LOG_ERROR(current.tries, "remaining tries for audio output fix:", device_.description());
    state_.setValue(State::waitingToDisconnect(current.tries - 1));
    break;
  case State::Kind::gaveUp: PXR_LOG_ERROR("Already exhausted tries to fix audio ouptut"); return;
  case State::Kind::initial:
  case State::Kind::ok:
    PXR_LOG_ERROR("Could not set audio output so disconnecting and reconnecting:", device_.description());
    state_.setValue(State::waitingToDisconnect(services_.tunables(tunable::MissingAudioDeviceTries) - 1));
    break;
  }

  services_.loop.postAfter(services_.tunables(tunable::MissingAudioDeviceDisconnectionDelay),
                           [this, alive = device_.lifetime().lock()] { closeUnlessListed(); });
}

// The audio device may have appeared during the delay: then setting the
// output again is the repair, and the connection stays.
void OutputFixer::closeUnlessListed() {
  if (tracker_.isAudioOutput() != false || tracker_.isPotentialAudioOutput() != true) {
    // Correct, or not to be known: either way this repair is over.
    if (state().kind == State::Kind::waitingToDisconnect) setOk("audio output is now correct or cannot be known");
  } else if (services_.outputDeviceManager.isPotentialOutput(device_)) {
    PXR_LOG(outputFixerLog(), "Setting audio output again because its device is listed now:", device_.description());
    tracker_.setDefaultAudioOutput();
  } else {
    PXR_LOG_ERROR("Closing connection to try to fix audio output", state(), device_.description());
    services_.loop.runOnWorker([this, alive = device_.lifetime().lock()] { connection_.closeConnection(); });
  }
}

bool OutputFixer::didDisconnect() {
  const State current = state();
  PXR_LOG(outputFixerLog(), "Did disconnect with state", current);
  switch (current.kind) {
  case State::Kind::waitingToDisconnect:
    state_.setValue(State::waitingToReconnect(current.tries));
    PXR_LOG_ERROR("Re-opening connection to try to fix audio output", state(), device_.description());
    reopen();
    return true;
  case State::Kind::waitingToReconnect:
    PXR_LOG_ERROR("Connecting again because disconnected while waiting to reconnect", current, device_.description());
    reopen();
    return true;
  default: return false;
  }
}

// The blocking connect runs on a worker, as a click's does, so the tray stays
// responsive while it pages the device. One disconnection is reported up to
// three times; a reopening already under way answers them all, as a second
// connect to a device that is being connected would only fail.
void OutputFixer::reopen() {
  if (reopening_.exchange(true)) return;
  services_.loop.runOnWorker([this, alive = device_.lifetime().lock()] {
    connection_.openConnection();
    reopening_ = false;
  });
}

} // namespace lb
