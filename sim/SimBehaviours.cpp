#include "sim/SimBehaviours.h"

#include "sim/SimBluetoothWorld.h"

namespace lb::sim {

SimBehaviour succeedsAfter(double seconds) {
  return [seconds](SimCallContext& call) {
    call.loop.sleepOnWorker(Seconds(seconds));
    call.world.setConnected(call.address, true);
    return IOReturn::success();
  };
}

SimBehaviour disconnectsAfter(double seconds) {
  return [seconds](SimCallContext& call) {
    call.loop.sleepOnWorker(Seconds(seconds));
    call.world.setConnected(call.address, false);
    return IOReturn::success();
  };
}

SimBehaviour failsAfter(IOReturn result, double seconds) {
  return [result, seconds](SimCallContext& call) {
    call.loop.sleepOnWorker(Seconds(seconds));
    return result;
  };
}

SimBehaviour pageTimesOut() {
  return [](SimCallContext& call) {
    call.loop.sleepOnWorker(Seconds(call.pageTimeout.value_or(8192) * 0.000625));
    return pageTimeoutResult();
  };
}

SimBehaviour connectsLateAfter(IOReturn timeout, double seconds, double lateBy) {
  return [timeout, seconds, lateBy](SimCallContext& call) {
    call.loop.sleepOnWorker(Seconds(seconds));
    call.loop.postAfter(Seconds(lateBy),
                        [&world = call.world, address = call.address] { world.setConnected(address, true); });
    return timeout;
  };
}

SimBehaviour inTurn(std::vector<SimBehaviour> behaviours) {
  auto next = std::make_shared<std::size_t>(0);
  return [behaviours = std::move(behaviours), next](SimCallContext& call) {
    auto index = std::min(*next, behaviours.size() - 1);
    ++*next;
    return behaviours[index](call);
  };
}

SimBehaviour cycles(std::vector<SimBehaviour> behaviours) {
  return [behaviours = std::move(behaviours), next = std::size_t{0}](SimCallContext& call) mutable {
    return behaviours[next++ % behaviours.size()](call);
  };
}

IOReturn pageTimeoutResult() {
  return IOReturn::make(IOReturn::Code::kBluetoothHCIErrorPageTimeout, "simulated page timeout");
}
IOReturn alreadyConnectedResult() {
  return IOReturn::make(IOReturn::Code::kBluetoothHCIErrorACLConnectionAlreadyExists, "simulated: already connected");
}
IOReturn timeoutResult() { return IOReturn::make(IOReturn::Code::kIOReturnTimeout); }
IOReturn offlineResult() { return IOReturn::make(IOReturn::Code::kIOReturnOffline, "simulated: adapter off"); }

} // namespace lb::sim
