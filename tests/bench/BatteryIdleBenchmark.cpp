// Ten connected devices with battery levels, the registry's icon timer and
// the scripting interface on a private session bus, in virtual time: counts
// the helper runs and battery-source reads while the program is idle from
// its tenth to its twentieth minute, when the helper would be due (target:
// no helper runs). With no device showing its level in the tray, with all
// of them, and with the helper turned on. The tray's tool tip reads the
// level, at most once a staleness interval (60 s) a device.
//   battery_idle_benchmark
#include "core/AppDelegate.h"
#include "linux/report/LinuxDiagnosticReporter.h"
#include "scripting/ScriptingService.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/SimulatedPlatform.h"

#include <QCoreApplication>

#include <cstdio>

using namespace lb;

namespace {

struct Counts {
  std::size_t helperRuns;
  int sourceReads;
};

Counts idle(test::PrivateBus& session, bool showBatteryLevel, bool helper) {
  SettingsValue::Array devices;
  for (int i = 0; i < 10; ++i) {
    devices.emplace_back(SettingsValue::Dictionary{{"deviceID", i + 1},
                                                   {"device", "00-11-22-33-44-0" + std::to_string(i)},
                                                   {"showBatteryLevel", showBatteryLevel}});
  }
  InMemorySettingsStore store({{"devices", devices}, {"BatteryInfoUseHelper", helper}});
  SimulatedPlatform sim(store);
  sim.batterySources.helper = [](const std::string&) {
    return SettingsValue(SettingsValue::Dictionary{{"BatteryPercentSingle", 50}});
  };
  for (int i = 0; i < 10; ++i) {
    auto address = "00-11-22-33-44-0" + std::to_string(i);
    sim.world.addDevice(address, "Device " + std::to_string(i), 4);
    sim.world.device(address)->setBatteryProperty("batteryPercentSingle", 40 + i);
    sim.world.setConnected(address, true);
  }
  AppDelegate app(sim.services);
  app.applicationDidFinishLaunching();
  LinuxDiagnosticReporter reporter(LinuxDiagnosticReporter::Sources::thisMachine());
  ScriptingService scripting(session.connect("benchmark"), app, sim.services, reporter);
  auto pass = [&](double seconds) {
    for (double passed = 0; passed < seconds; passed += 1) {
      sim.loop.advance(1);
      QCoreApplication::processEvents();
    }
  };
  pass(600);
  const Counts before{sim.batterySources.helperRuns.size(), sim.batterySources.registryReads};
  pass(600);
  app.applicationWillTerminate();
  return {sim.batterySources.helperRuns.size() - before.helperRuns,
          sim.batterySources.registryReads - before.sourceReads};
}

} // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  test::PrivateBus session(test::PrivateBus::Kind::session);
  if (!session.skipReason().empty()) {
    std::fprintf(stderr, "cannot run: %s\n", session.skipReason().c_str());
    return 1;
  }
  for (auto [shown, helper] : {std::pair{false, false}, std::pair{true, false}, std::pair{true, true}}) {
    auto counts = idle(session, shown, helper);
    std::printf("10 connected devices, %s%s, idle from minute 10 to 20: %zu helper runs%s, "
                "%d battery-source reads\n",
                shown ? "all showing their level in the tray" : "none showing its level", helper ? ", helper on" : "",
                counts.helperRuns, helper ? "" : " (target 0)", counts.sourceReads);
  }
  return 0;
}
