// The whole lanternbud on the BlueZ model and a private PulseAudio server:
// a headset is connected through the scripting interface and its sink made
// a moment later, as Linux's sound server does. Times, as a second libpulse
// client of the same server sees it, from the sink's arrival to it becoming
// the default (target under 50 ms).   late_sink_benchmark [rounds]   (default 10)
#include "linux/audio/PulseAudioSystem.h"
#include "tests/bench/ProgramServices.h"
#include "tests/support/RunningProgram.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <thread>

using namespace lb;

namespace {

constexpr const char* address = "00:11:22:33:44:55";

std::optional<AudioDeviceID> sinkOf(const PulseAudioSystem& audio) {
  for (auto id : audio.deviceIDs()) {
    if (audio.uid(id).value.value_or("").find(address) != std::string::npos) return id;
  }
  return std::nullopt;
}

} // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 10;
  test::ProgramServices services;
  if (!services.ready()) return 1;
  auto& [system, session, pulse] = services;
  system.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", address, "Headset"});
  system.bluez("/", "org.bluez.Mock", "PairDevice", {"hci0", address, 0x240404});
  pulse.pactl("set-default-sink builtin"); // the user's choice, which the server keeps
  test::RunningProgram program(&system, session, pulse.server());
  std::filesystem::create_directories(program.settingsFile().parent_path());
  test::writeFile(program.settingsFile(),
                  std::string(R"({"devices": [{"deviceID": 1, "device": ")") + address + "\"}]}");
  if (!program.start()) {
    std::fprintf(stderr, "cannot run: lanternbud did not start\n");
    return 1;
  }
  PulseAudioSystem observer(pulse.server());
  std::vector<double> latencies;
  for (int round = 0; round < rounds; ++round) {
    program.ctl({"connect", "Headset", "--no-wait"});
    test::waitUntil([] { return false; }, 1); // the program has seen the link
    std::string module;
    std::thread load([&] { module = pulse.loadBluetoothSink("headset" + std::to_string(round), address, "Headset"); });
    std::optional<AudioDeviceID> sink;
    while (!(sink = sinkOf(observer))) std::this_thread::sleep_for(std::chrono::microseconds(100));
    const auto listed = std::chrono::steady_clock::now();
    const auto deadline = listed + std::chrono::seconds(5);
    while (observer.defaultDevice(AudioDirection::output) != sink && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    const auto set = std::chrono::steady_clock::now();
    load.join();
    if (set >= deadline) {
      std::fprintf(stderr, "round %d: the headset's sink did not become the default within 5 s\n", round + 1);
      return 1;
    }
    latencies.push_back(std::chrono::duration<double, std::milli>(set - listed).count());
    program.ctl({"disconnect", "Headset"});
    pulse.pactl("unload-module " + module);
    pulse.pactl("set-default-sink builtin");
  }
  std::sort(latencies.begin(), latencies.end());
  std::printf("late sink to default output over %d rounds: median %.1f ms, worst %.1f ms (target under 50 ms)\n",
              rounds, latencies[latencies.size() / 2], latencies.back());
  return 0;
}
