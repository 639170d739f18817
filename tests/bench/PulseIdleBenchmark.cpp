// On a private PulseAudio server with 10 sinks and 4 sources, runs the audio
// queries that the state tracking makes for 10 connected headsets once a
// second, and counts the requests sent to the server (target 0). Then times
// how long a new Bluetooth sink takes to reach the mirror (target: well
// under 50 ms).   pulse_idle_benchmark [seconds]   (default 60)
#include "core/OutputDeviceManager.h"
#include "linux/audio/PulseAudioSystem.h"
#include "sim/InMemorySettingsStore.h"
#include "sim/VirtualEventLoop.h"
#include "tests/support/PulseServer.h"

#include <QCoreApplication>

#include <cstdio>

using namespace lb;

namespace {

struct Headset final : BluetoothMatchable, BluetoothDevice {
  explicit Headset(std::string address) : address_(std::move(address)) {}
  std::shared_ptr<BluetoothDevice> device() const override {
    return std::shared_ptr<BluetoothDevice>(std::shared_ptr<void>(), const_cast<Headset*>(this));
  }
  std::optional<std::string> deviceName() const override { return "Headset " + address_; }
  std::string description() const override { return address_; }
  std::string addressString() const override { return address_; }
  std::optional<std::string> name() const override { return deviceName(); }
  bool isConnected() const override { return true; }
  std::uint32_t majorDeviceClass() const override { return 4; }
  IOReturn openConnection(std::optional<std::uint16_t>) override { return {}; }
  IOReturn closeConnection() override { return {}; }
  std::string address_;
};

} // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  const double seconds = argc > 1 ? std::atof(argv[1]) : 60;
  test::PulseServer pulse;
  if (!pulse.skipReason().empty()) {
    std::fprintf(stderr, "cannot run: %s\n", pulse.skipReason().c_str());
    return 1;
  }
  std::vector<Headset> headsets;
  for (int i = 0; i < 9; ++i) {
    char address[18];
    std::snprintf(address, sizeof address, "00:11:22:33:44:%02d", i);
    headsets.emplace_back(address);
    pulse.loadBluetoothSink("headset" + std::to_string(i), address, "Headset " + std::string(address));
    if (i < 4) pulse.loadBluetoothSource("mic" + std::to_string(i), "headset" + std::to_string(i), address, "Mic");
  }
  headsets.emplace_back("00:11:22:33:44:99"); // a tenth whose sink is absent

  PulseAudioSystem audio(pulse.server());
  test::waitUntil([&] { return audio.deviceIDs().size() == 14; });
  VirtualEventLoop cacheClock; // the name caches age in virtual time: every query reaches the mirror
  InMemorySettingsStore store;
  UserDefaults defaults(store);
  Tunables tunables(defaults);
  AudioHardware hardware(audio, cacheClock);
  OutputDeviceManager outputs(hardware, tunables);

  const auto before = audio.requestsSent();
  int queries = 0;
  auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (std::chrono::steady_clock::now() < end) {
    for (const auto& headset : headsets) {
      outputs.isPotentialOutput(headset);
      outputs.isCurrent(headset);
      queries += 2;
    }
    cacheClock.advance(301);
    std::this_thread::sleep_for(std::chrono::seconds(1));
  }
  std::printf("%zu devices, %d state-tracking queries over %.0f s: %llu requests sent to the server (target 0)\n",
              audio.deviceIDs().size(), queries, seconds,
              static_cast<unsigned long long>(audio.requestsSent() - before));

  for (int round = 0; round < 5; ++round) {
    auto name = "late" + std::to_string(round);
    auto start = std::chrono::steady_clock::now();
    std::thread load(
        [&] { pulse.loadBluetoothSink(name, "AA:BB:CC:DD:EE:0" + std::to_string(round), "Late " + name); });
    auto count = audio.deviceIDs().size();
    while (audio.deviceIDs().size() == count) std::this_thread::sleep_for(std::chrono::microseconds(100));
    auto known = std::chrono::steady_clock::now();
    load.join();
    auto returned = std::chrono::steady_clock::now();
    auto ms = [&](auto t) { return std::chrono::duration<double, std::milli>(t - start).count(); };
    std::printf("new Bluetooth sink %d: in the mirror %.1f ms after pactl was started (pactl itself took %.1f ms)\n",
                round + 1, ms(known), ms(returned));
  }
  return 0;
}
