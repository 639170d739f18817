#include "core/DeviceSetting.h"
#include "linux/system/SpawnScriptRunner.h"
#include "linux/xdg/XdgScriptsFolder.h"
#include "tests/support/SimulatedPlatform.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <sys/stat.h>
#include <thread>

namespace lb {

namespace {

// The simulated platform with the real scripts folder and runner, in a
// temporary folder whose name would mean something to a shell.
struct RealScripts {
  test::TemporaryDirectory home;
  std::filesystem::path folder = home / "data dir; $(touch pwned) `touch pwned2`/lanternbud/Scripts";
  InMemorySettingsStore store;
  SimulatedPlatform sim{store};
  XdgScriptsFolder scripts{folder};
  SpawnScriptRunner runner;
  Services services = sim.servicesWith({.scriptsFolder = &scripts, .scriptRunner = &runner});
  std::shared_ptr<DeviceSetting> setting;

  RealScripts() {
    sim.world.addDevice("aa", "Keyboard", 5);
    setting = DeviceSetting::make(services, {{"deviceID", 1}, {"device", "aa"}});
  }

  void writeScript(const std::string& name, const std::string& text, std::filesystem::perms mode) {
    std::filesystem::create_directories(folder);
    test::writeFile(folder / name, text);
    std::filesystem::permissions(folder / name, mode);
  }
};

// Waits, within a bound, for a line that a script's end writes, delivering
// Qt's events (the runner watches scripts on the event loop).
bool eventually(const test::CapturedLog& log, const std::string& text) {
  return test::waitUntil([&] { return log.contains(text); }, 10);
}

} // namespace

TEST(ScriptsOnLinux, AConnectScriptRunsAsItsOwnProgram) {
  test::CapturedLog log({"LogScript"});
  RealScripts r;
  auto marker = r.home / "marker";
  r.writeScript("1.connected", "#!/bin/sh\necho \"$0\" > '" + marker.string() + "'\n",
                std::filesystem::perms::owner_all);
  r.setting->setRunShellScriptAfterConnected(true);
  r.setting->runScript(ScriptType::connected);
  EXPECT_TRUE(
      eventually(log, "Successfully ran script <DeviceSetting: Keyboard>: " + (r.folder / "1.connected").string()));
  EXPECT_EQ(test::readFile(marker), (r.folder / "1.connected").string() + "\n");
  EXPECT_FALSE(std::filesystem::exists("pwned"));
  EXPECT_FALSE(std::filesystem::exists(r.home / "pwned"));
}

TEST(ScriptsOnLinux, FailuresSayWhatHappened) {
  test::CapturedLog log;
  RealScripts r;
  r.setting->setRunShellScriptAfterConnected(true);
  r.setting->setRunShellScriptAfterDisconnected(true);

  r.writeScript("1.connected", "#!/bin/sh\nexit 3\n", std::filesystem::perms::owner_all);
  r.setting->runScript(ScriptType::connected);
  EXPECT_TRUE(eventually(log, "Error running script <DeviceSetting: Keyboard>: exited with status 3"));

  r.writeScript("1.connected", "#!/bin/sh\nkill -9 $$\n", std::filesystem::perms::owner_all);
  r.setting->runScript(ScriptType::connected);
  EXPECT_TRUE(eventually(log, "killed by signal 9"));

  // What cannot start is named, with its device and what to mend.
  const auto script = (r.folder / "1.disconnected").string();
  r.writeScript("1.disconnected", "#!/bin/sh\n",
                std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  r.setting->runScript(ScriptType::disconnected);
  EXPECT_TRUE(log.contains("Error creating script <DeviceSetting: Keyboard>: " + script +
                           ": it is not executable (chmod u+x '" + script + "')."));

  r.writeScript("1.disconnected", "#!/usr/bin/nonesuch -x\n", std::filesystem::perms::owner_all);
  r.setting->runScript(ScriptType::disconnected);
  EXPECT_TRUE(log.contains(script + ": the interpreter /usr/bin/nonesuch on its first line does not exist."));

  // No interpreter line: no shell is asked to make sense of it.
  r.writeScript("1.disconnected", "touch pwned3\n", std::filesystem::perms::owner_all);
  r.setting->runScript(ScriptType::disconnected);
  EXPECT_TRUE(log.contains(script + ": it does not begin with an interpreter line such as #!/bin/sh."));
  EXPECT_FALSE(std::filesystem::exists("pwned3"));
}

TEST(ScriptsOnLinux, AScriptThatKeepsRunningHoldsNothingUp) {
  test::CapturedLog log({"LogScript"});
  RealScripts r;
  auto pidFile = r.home / "pid";
  r.writeScript("1.connected", "#!/bin/sh\necho $$ > '" + pidFile.string() + "'\nexec sleep 60\n",
                std::filesystem::perms::owner_all);
  r.setting->setRunShellScriptAfterConnected(true);
  bool nextEventRan = false;
  auto start = std::chrono::steady_clock::now();
  r.setting->runScript(ScriptType::connected);
  r.sim.loop.post([&] { nextEventRan = true; });
  r.sim.loop.runDue();
  EXPECT_TRUE(nextEventRan);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30)); // far from the script's 60 s

  for (int i = 0; i < 500 && test::readFile(pidFile).empty(); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  pid_t pid = std::stoi(test::readFile(pidFile));
  EXPECT_EQ(getpgid(pid), pid); // a process group of its own
  kill(pid, SIGKILL);
  EXPECT_TRUE(eventually(log, "Starting to run script"));
}

TEST(ScriptsOnLinux, AScriptPastItsTimeLimitOrRunningAtQuitIsEndedWithWhatItStarted) {
  test::CapturedLog log;
  RealScripts r;
  r.sim.defaults.setValue("ScriptTimeLimit", 0.5);
  auto pidFile = r.home / "pid";
  // A child of the script's own, which must end with it.
  r.writeScript("1.connected", "#!/bin/sh\nsleep 60 &\necho $! > '" + pidFile.string() + "'\nwait\n",
                std::filesystem::perms::owner_all);
  r.setting->setRunShellScriptAfterConnected(true);
  r.setting->runScript(ScriptType::connected);
  EXPECT_TRUE(eventually(log, "Error running script <DeviceSetting: Keyboard>: ended after running longer than 0.5 s "
                              "(killed by signal 15)"));
  // Gone, or a zombie that its new parent has yet to reap.
  const auto ended = [&] {
    const auto stat = "/proc/" + test::readFile(pidFile).substr(0, test::readFile(pidFile).find('\n')) + "/stat";
    return test::waitUntil(
        [&] {
          auto text = test::readFile(stat);
          return text.empty() || text.find(") Z ") != std::string::npos;
        },
        10);
  };
  EXPECT_TRUE(ended());

  // At quit, one that ignores SIGTERM is killed with what it started.
  r.sim.defaults.setValue("ScriptTimeLimit", 300);
  std::filesystem::remove(pidFile);
  r.writeScript("1.connected", "#!/bin/sh\ntrap '' TERM\nsleep 60 &\necho $! > '" + pidFile.string() + "'\nwait\n",
                std::filesystem::perms::owner_all);
  r.setting->runScript(ScriptType::connected);
  ASSERT_TRUE(test::waitUntil([&] { return !test::readFile(pidFile).empty(); }, 10));
  r.runner.endRunning(Seconds(0.5));
  EXPECT_TRUE(
      log.contains("Lanternbud quits: ending the scripts still running (" + (r.folder / "1.connected").string()));
  EXPECT_TRUE(log.contains("1.connected did not end within 0.5 s of SIGTERM; it was killed."));
  EXPECT_TRUE(ended());
}

TEST(ScriptsOnLinux, SavedScriptsAreOwnerOnlyWithLineFeeds) {
  RealScripts r;
  ScriptSaver saver(r.scripts, r.sim.defaults);
  saver.saveScript(7, ScriptType::disconnected, "#!/bin/sh\r\necho bye\r\n");
  auto file = r.folder / "7.disconnected";
  EXPECT_EQ(test::readFile(file), "#!/bin/sh\necho bye\n");
  struct stat info {};
  stat(file.c_str(), &info);
  EXPECT_EQ(info.st_mode & 0777, 0700u);
  stat(r.folder.c_str(), &info);
  EXPECT_EQ(info.st_mode & 0777, 0700u);
  EXPECT_TRUE(r.sim.defaults.object("scriptFolderURL")); // remembered as the folder

  r.setting->setShellScriptAfterConnected("#!/bin/sh\n");
  r.setting->saveScripts();
  auto connected = r.folder / "1.connected";
  ASSERT_TRUE(std::filesystem::exists(connected));
  auto inode = [&] {
    stat(connected.c_str(), &info);
    return info.st_ino;
  };
  auto before = inode();
  r.setting->saveScripts(); // unchanged: not rewritten
  EXPECT_EQ(inode(), before);

  saver.saveScript(7, ScriptType::disconnected, "");
  EXPECT_FALSE(std::filesystem::exists(file));
}

} // namespace lb
