#include "core/ScriptSaver.h"
#include "linux/xdg/XdgScriptsFolder.h"
#include "sim/InMemorySettingsStore.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace lb {

// Through the program's saver: owner-only files with line feeds in an
// owner-only folder, removed when emptied.
TEST(XdgScriptsFolder, SavedScriptsAreOwnerOnlyWithLineFeeds) {
  test::TemporaryDirectory home;
  XdgScriptsFolder scripts(home / "lanternbud/Scripts");
  InMemorySettingsStore store;
  UserDefaults defaults(store);
  ScriptSaver saver(scripts, defaults);
  saver.saveScript(7, ScriptType::disconnected, "#!/bin/sh\r\necho bye\r\n");
  const auto file = home / "lanternbud/Scripts/7.disconnected";
  EXPECT_EQ(scripts.read("7.disconnected"), "#!/bin/sh\necho bye\n");
  EXPECT_FALSE(scripts.read("7.connected"));
  for (const auto& path : {file, file.parent_path()}) {
    struct stat info {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u) << path;
  }
  EXPECT_TRUE(defaults.object("scriptFolderURL")); // remembered as the folder

  saver.saveScript(7, ScriptType::disconnected, "");
  EXPECT_FALSE(std::filesystem::exists(file));
}

} // namespace lb
