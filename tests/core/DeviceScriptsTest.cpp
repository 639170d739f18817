#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

TEST(DeviceScripts, RunOnlyWhenSwitchedOnAndPresentAndTheOutcomeIsLogged) {
  test::CapturedLog log({"LogScript"});
  test::SimulatedDevice d;
  d.sim.scriptsFolder.files["1.disconnected"] = "#!/bin/sh\n";
  d.setting->runScript(ScriptType::disconnected);
  d.setting->setRunShellScriptAfterConnected(true);
  d.setting->runScript(ScriptType::connected);
  EXPECT_TRUE(d.sim.scriptRunner.runs.empty());

  d.sim.scriptsFolder.files["1.connected"] = "#!/bin/sh\n";
  d.setting->runScript(ScriptType::connected);
  ASSERT_EQ(d.sim.scriptRunner.runs.size(), 1u);
  EXPECT_EQ(d.sim.scriptRunner.runs[0].path, "/simulated/Scripts/1.connected");
  d.sim.scriptRunner.finish(0, {true, "exited with status 0"});
  EXPECT_TRUE(log.contains("Successfully ran script <DeviceSetting: Keyboard>: /simulated/Scripts/1.connected"));

  d.setting->runScript(ScriptType::connected);
  d.sim.scriptRunner.finish(1, {false, "exited with status 3"});
  EXPECT_TRUE(log.contains("Error running script <DeviceSetting: Keyboard>: exited with status 3"));

  d.sim.scriptRunner.refusal = "Permission denied";
  d.setting->runScript(ScriptType::connected);
  EXPECT_TRUE(log.contains(
      "Error creating script <DeviceSetting: Keyboard>: /simulated/Scripts/1.connected: Permission denied."));
}

TEST(DeviceScripts, RunOnConnectionAndDisconnectionButNotForTheFixersOwnDisconnection) {
  test::SimulatedDevice d;
  d.setting->setRunShellScriptAfterConnected(true);
  d.setting->setRunShellScriptAfterDisconnected(true);
  d.sim.scriptsFolder.files = {{"1.connected", "#!/bin/sh\n"}, {"1.disconnected", "#!/bin/sh\n"}};
  d.sim.world.setConnected(d.address, true);
  d.sim.loop.advance(1);
  d.sim.world.setConnected(d.address, false);
  d.sim.loop.advance(1);
  ASSERT_EQ(d.sim.scriptRunner.runs.size(), 2u);
  EXPECT_EQ(d.sim.scriptRunner.runs[0].path, "/simulated/Scripts/1.connected");
  EXPECT_EQ(d.sim.scriptRunner.runs[1].path, "/simulated/Scripts/1.disconnected");

  d.sim.world.setConnected(d.address, true);
  d.sim.loop.advance(1);
  d.setting->outputFixer().didFailToSetAudioOutput(); // a repair is under way
  d.sim.world.setConnected(d.address, false);
  d.sim.loop.advance(0.5);
  EXPECT_EQ(d.sim.scriptRunner.runs.size(), 3u); // its disconnection runs no script
}

} // namespace lb
