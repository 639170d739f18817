#include "core/ScriptSaver.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

namespace {

SettingsValue grantFor(const std::string& folder) { return SettingsValue::Data(folder.begin(), folder.end()); }

class ScriptSaverTest : public ::testing::Test {
protected:
  InMemorySettingsStore store;
  SimulatedPlatform sim{store};
  ScriptSaver saver{sim.scriptsFolder, sim.defaults};
  const std::string folder = SimScriptsFolder::folder;
};

} // namespace

TEST_F(ScriptSaverTest, AStoredGrantIsUsedWithoutAQuestion) {
  store.setValue("scriptFolderURL", grantFor(folder));
  saver.saveScript(7, ScriptType::disconnected, "#!/bin/sh\r\necho bye\r");
  EXPECT_TRUE(sim.scriptsFolder.prompts.empty());
  EXPECT_EQ(sim.scriptsFolder.files.at("7.disconnected"), "#!/bin/sh\necho bye\n");

  saver.saveScript(7, ScriptType::disconnected, "");
  EXPECT_FALSE(sim.scriptsFolder.files.contains("7.disconnected"));
  sim.scriptsFolder.files["7.connected"] = "x";
  saver.saveScript(7, ScriptType::connected, std::nullopt);
  EXPECT_TRUE(sim.scriptsFolder.files.empty());
}

TEST_F(ScriptSaverTest, WithoutAGrantTheUserIsAskedForThatVeryFolder) {
  sim.scriptsFolder.choices = {folder};
  saver.saveScript(1, ScriptType::connected, "#!/bin/sh\n");
  EXPECT_EQ(sim.scriptsFolder.prompts, std::vector<std::string>{folder});
  EXPECT_EQ(store.value("scriptFolderURL"), grantFor(folder));
  EXPECT_TRUE(sim.scriptsFolder.files.contains("1.connected"));

  InMemorySettingsStore otherStore;
  SimulatedPlatform other(otherStore);
  ScriptSaver otherSaver(other.scriptsFolder, other.defaults);
  other.scriptsFolder.choices = {"/simulated"}; // the parent, not the folder
  EXPECT_THROW(otherSaver.saveScript(1, ScriptType::connected, "#!/bin/sh\n"), ScriptError);
  EXPECT_FALSE(otherStore.value("scriptFolderURL"));
}

TEST_F(ScriptSaverTest, WithoutTheFolderTheParentIsAskedForAndTheFolderMade) {
  test::CapturedLog log({"LogScriptSave"});
  sim.scriptsFolder.folderExists = false;
  sim.scriptsFolder.choices = {"/simulated"};
  saver.saveScript(1, ScriptType::connected, "#!/bin/sh\n");
  EXPECT_EQ(sim.scriptsFolder.prompts, std::vector<std::string>{"/simulated"}); // one question only
  EXPECT_TRUE(sim.scriptsFolder.folderExists);
  EXPECT_TRUE(log.contains("Created: /simulated/Scripts"));
  EXPECT_TRUE(sim.scriptsFolder.files.contains("1.connected"));

  InMemorySettingsStore refusedStore;
  SimulatedPlatform refused(refusedStore);
  ScriptSaver refusedSaver(refused.scriptsFolder, refused.defaults);
  refused.scriptsFolder.folderExists = false;
  refused.scriptsFolder.choices = {"nothing", folder};
  refusedSaver.saveScript(1, ScriptType::connected, "#!/bin/sh\n");
  // Refused the parent: the folder is made anyway, and then asked for.
  EXPECT_EQ(refused.scriptsFolder.prompts, (std::vector<std::string>{"/simulated", folder}));
  EXPECT_TRUE(refused.scriptsFolder.files.contains("1.connected"));
}

TEST_F(ScriptSaverTest, AGrantThatNoLongerResolvesIsAskedForAgain) {
  store.setValue("scriptFolderURL", grantFor(folder));
  sim.scriptsFolder.bookmarksResolve = false;
  EXPECT_THROW(saver.saveScript(1, ScriptType::connected, "x"), ScriptError); // the user said nothing
  EXPECT_EQ(sim.scriptsFolder.prompts.size(), 1u);
}

TEST(Scripts, RunOnlyWhenSwitchedOnAndPresent) {
  test::CapturedLog log({"LogScript"});
  test::SimulatedDevice d;
  d.setting->runScript(ScriptType::connected);
  EXPECT_TRUE(log.contains("Script type not enabled: connected"));
  d.setting->setRunShellScriptAfterConnected(true);
  d.setting->runScript(ScriptType::connected);
  EXPECT_TRUE(log.contains("No script for: /simulated/Scripts/1.connected"));
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
  EXPECT_TRUE(log.contains("Error creating script <DeviceSetting: Keyboard>: ") &&
              log.contains(": Permission denied."));
}

TEST(Scripts, RunOnConnectionAndDisconnectionButNotForTheFixersOwnDisconnection) {
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

  d.sim.world.setConnected(d.address, true); // a keyboard: every connection runs it
  d.sim.loop.advance(1);
  EXPECT_EQ(d.sim.scriptRunner.runs.size(), 3u);
  d.setting->outputFixer().didFailToSetAudioOutput(); // a repair is under way
  d.sim.world.setConnected(d.address, false);
  d.sim.loop.advance(0.5);
  EXPECT_EQ(d.sim.scriptRunner.runs.size(), 3u); // its disconnection runs no script
}

TEST(Scripts, SavingWritesOnlyWhatChanged) {
  const std::string folder = SimScriptsFolder::folder;
  test::SimulatedDevice d({{"scriptFolderURL", SettingsValue::Data(folder.begin(), folder.end())}});
  d.sim.scriptsFolder.files = {{"1.connected", "#!/bin/sh\necho hi\n"}};
  auto reloaded = DeviceSetting::make(d.sim.services, d.setting->options());
  reloaded->saveScripts();
  EXPECT_EQ(d.sim.scriptsFolder.writes, 0);
  EXPECT_TRUE(d.sim.scriptsFolder.prompts.empty());

  reloaded->setShellScriptAfterConnected(std::nullopt); // cleared in the editor
  reloaded->setShellScriptAfterDisconnected("#!/bin/sh\r\nlogger gone\r\n");
  reloaded->saveScripts();
  EXPECT_EQ(d.sim.scriptsFolder.files,
            (std::map<std::string, std::string>{{"1.disconnected", "#!/bin/sh\nlogger gone\n"}}));
}

} // namespace lb
