#pragma once

#include "core/DeviceHandle.h"
#include "core/Services.h"
#include "foundation/PXRAtomic.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace lb {

class ConnectionControl;
class ConnectionTracker;

// Repairs a headset whose sound output could not be set because no audio
// device matched it: waits a moment, closes the connection, reopens it when
// the disconnection is reported, and tries again, a bounded number of times.
// Events arrive on the main thread; the state is also read by the worker's
// log lines, so it is atomic.
class OutputFixer {
public:
  struct State {
    enum class Kind { waitingToDisconnect, waitingToReconnect, initial, ok, gaveUp };
    Kind kind = Kind::initial;
    std::int64_t tries = 0; // further cycles allowed, in the two waiting states

    static State waitingToDisconnect(std::int64_t tries) { return {Kind::waitingToDisconnect, tries}; }
    static State waitingToReconnect(std::int64_t tries) { return {Kind::waitingToReconnect, tries}; }
    static State initial() { return {Kind::initial, 0}; }
    static State ok() { return {Kind::ok, 0}; }
    static State gaveUp() { return {Kind::gaveUp, 0}; }

    bool operator==(const State&) const = default;
    // "waitingToReconnect(3)", "ok"
    std::string description() const;
  };

  // It reads the tracker's view of the output, and closes and reopens the
  // connection through the connection control.
  OutputFixer(DeviceHandle& device, ConnectionTracker& tracker, ConnectionControl& connection, Services& services)
      : device_(device), tracker_(tracker), connection_(connection), services_(services) {}

  State state() const { return state_.value(); }
  bool isRetrying() const;

  void didDetectCorrectAudioOutput();
  void didAutomaticallySetAudioOutput();
  void didManuallySetAudioOutput();
  void willManuallyDisconnect();
  void didFailToConnect();
  void didFailToSetAudioOutput();
  // True while the disconnection belongs to a repair; the fixer then
  // reopens the connection itself.
  bool didDisconnect();

private:
  void setOk(const char* because);
  void closeUnlessListed();
  void reopen();

  DeviceHandle& device_;
  ConnectionTracker& tracker_;
  ConnectionControl& connection_;
  Services& services_;
  PXRAtomic<State> state_{State::initial()};
  std::atomic<bool> reopening_ = false;
};

} // namespace lb
