#include "core/ScriptSaver.h"
#include "tests/support/SimulatedPlatform.h"

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

  sim.scriptsFolder.bookmarksResolve = false;                    // the grant no longer serves: asked again
  EXPECT_FALSE(saver.saveScript(1, ScriptType::connected, "x")); // the user said nothing
  EXPECT_EQ(sim.scriptsFolder.prompts.size(), 1u);
}

// The folder's parent will not do.
TEST_F(ScriptSaverTest, WithoutAGrantTheUserIsAskedForThatVeryFolder) {
  sim.scriptsFolder.choices = {folder};
  saver.saveScript(1, ScriptType::connected, "#!/bin/sh\n");
  EXPECT_EQ(sim.scriptsFolder.prompts, std::vector<std::string>{folder});
  EXPECT_EQ(store.value("scriptFolderURL"), grantFor(folder));
  EXPECT_TRUE(sim.scriptsFolder.files.contains("1.connected"));

  store.removeValue("scriptFolderURL");
  sim.scriptsFolder.choices = {"/simulated"};
  EXPECT_FALSE(saver.saveScript(2, ScriptType::connected, "#!/bin/sh\n"));
  EXPECT_FALSE(store.value("scriptFolderURL"));
}

// Without the folder its parent is asked for, one question only; refused,
// the folder is made anyway and then asked for.
TEST_F(ScriptSaverTest, WithoutTheFolderTheParentIsAskedForAndTheFolderMade) {
  for (bool parentGranted : {true, false}) {
    store.removeValue("scriptFolderURL");
    sim.scriptsFolder.prompts.clear();
    sim.scriptsFolder.files.clear();
    sim.scriptsFolder.folderExists = false;
    sim.scriptsFolder.choices = {parentGranted ? "/simulated" : "nothing", folder};
    saver.saveScript(1, ScriptType::connected, "#!/bin/sh\n");
    EXPECT_TRUE(sim.scriptsFolder.folderExists);
    EXPECT_EQ(sim.scriptsFolder.prompts, (parentGranted ? std::vector<std::string>{"/simulated"}
                                                        : std::vector<std::string>{"/simulated", folder}));
    EXPECT_TRUE(sim.scriptsFolder.files.contains("1.connected"));
  }
}

} // namespace lb
