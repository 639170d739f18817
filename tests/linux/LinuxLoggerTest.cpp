#include "core/LogAreas.h"
#include "core/UserDefaults.h"
#include "foundation/JsonSettingsStore.h"
#include "linux/logging/LinuxLogger.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

namespace lb {

// Into the process's own file in the state folder go errors and the areas
// switched on for one run or in the settings file; lines from eight threads
// land whole.
TEST(LinuxLogger, TheAreasSwitchedOnGoWholeIntoTheProcesssOwnFile) {
  test::TemporaryDirectory home;
  setenv("XDG_STATE_HOME", (home / "state").c_str(), 1);
  JsonSettingsStore store(home / "settings.json");
  store.setValue("LogScript", true);
  store.setValue("LogConnect", false);
  UserDefaults defaults(store, UserDefaults::argumentDomain({"lanternbud", "-LogConnect", "YES"}));
  LinuxLogger::install([&](const std::string& area) { return defaults.boolValue(area, false); }, "lanternbud");
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 150; ++i) PXR_LOG(connectLog(), "thread", t, "line", i, std::string(200, 'x'));
    });
  }
  for (auto& thread : threads) thread.join();
  PXR_LOG(scriptLog(), "from the settings file");
  PXR_LOG(outputLog(), "never");
  PXR_LOG_ERROR("always");
  PXRLogger::setSharedLogger(nullptr);

  // "2026-11-22 23:59:01.123 [LogConnect] tests/linux/LinuxLoggerTest.cpp:NN fn: thread T line I xxx…"
  std::istringstream lines(test::readFile(home / "state/lanternbud/lanternbud App Log.log"));
  int whole = 0;
  std::string others;
  for (std::string line; std::getline(lines, line);) {
    ASSERT_TRUE(line.size() > 24 && line[4] == '-' && line[19] == '.') << line.substr(0, 120);
    if (line.compare(23, 14, " [LogConnect] ") == 0 && line.ends_with(" " + std::string(200, 'x'))) {
      ++whole;
    } else {
      others += line.substr(23) + "\n";
    }
  }
  EXPECT_EQ(whole, 8 * 150) << others; // under the limit: none trimmed
  EXPECT_NE(others.find(" [LogScript] "), std::string::npos) << others;
  EXPECT_NE(others.find(" [error] "), std::string::npos);
  EXPECT_EQ(others.find("never"), std::string::npos);

  // Without a log file the program goes on, and says where it could not
  // write on standard error, even when that is no terminal.
  setenv("XDG_STATE_HOME", (home / "settings.json/state").c_str(), 1);
  testing::internal::CaptureStderr();
  LinuxLogger::install([](const std::string&) { return false; }, "lanternbud");
  PXR_LOG_ERROR("goes on");
  PXRLogger::setSharedLogger(nullptr);
  EXPECT_NE(testing::internal::GetCapturedStderr().find((home / "settings.json/state/lanternbud").string()),
            std::string::npos);
}

} // namespace lb
