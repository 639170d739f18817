#pragma once

#include "sim/SimBluetoothDevice.h"

#include <memory>
#include <vector>

namespace lb::sim {

// Building blocks for simulated devices' connects and disconnects. Each call
// blocks its worker for a while in virtual time, then answers.

// Connects (or disconnects) after `seconds`.
SimBehaviour succeedsAfter(double seconds);
// Disconnects after `seconds`.
SimBehaviour disconnectsAfter(double seconds);
// Fails with `result` after `seconds`.
SimBehaviour failsAfter(IOReturn result, double seconds);
// Waits out the page timeout asked for (5.12 s without one), then reports
// a page time-out.
SimBehaviour pageTimesOut();
// Reports `timeout` after `seconds`, and connects `lateBy` seconds later:
// the spurious time-out.
SimBehaviour connectsLateAfter(IOReturn timeout, double seconds, double lateBy);
// One behaviour per call in turn; the last one repeats.
SimBehaviour inTurn(std::vector<SimBehaviour> behaviours);
// One behaviour per call in turn, round and round.
SimBehaviour cycles(std::vector<SimBehaviour> behaviours);

// Common results, as a backend would report them.
IOReturn pageTimeoutResult();      // 4
IOReturn alreadyConnectedResult(); // 11
IOReturn timeoutResult();          // 726
IOReturn offlineResult();          // 727

} // namespace lb::sim
