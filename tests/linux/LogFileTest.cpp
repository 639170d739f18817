#include "core/LogAreas.h"
#include "core/UserDefaults.h"
#include "foundation/JsonSettingsStore.h"
#include "linux/logging/LinuxLogger.h"
#include "linux/logging/LogFileSink.h"
#include "linux/logging/OurLogFile.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

namespace lb {

TEST(OurLogFile, LinesFromEightThreadsLandWholeInTheStateFolder) {
  test::TemporaryDirectory state;
  setenv("XDG_STATE_HOME", state.path().c_str(), 1);
  auto logger = std::make_shared<PXRLogger>([](const std::string& area) { return area == "LogConnect"; });
  std::string error;
  ASSERT_TRUE(OurLogFile::enable(*logger, "lanternbud", error)) << error;
  PXRLogger::setSharedLogger(logger);

  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 150; ++i) PXR_LOG(connectLog(), "thread", t, "line", i, std::string(200, 'x'));
    });
  }
  for (auto& thread : threads) thread.join();
  PXR_LOG(scriptLog(), "this area is off");
  PXRLogger::setSharedLogger(nullptr);
  logger.reset();

  auto file = state / "lanternbud/lanternbud App Log.log";
  std::istringstream lines(test::readFile(file));
  // "2026-11-22 23:59:01.123 [LogConnect] tests/linux/LogFileTest.cpp:NN fn: thread T line I xxx…"
  auto isWhole = [](const std::string& line) {
    const std::string area = " [LogConnect] tests/linux/LogFileTest.cpp:";
    return line.size() > 24 + area.size() + 200 && line[4] == '-' && line[10] == ' ' && line[19] == '.' &&
           line.compare(23, area.size(), area) == 0 && line.find(": thread ") != std::string::npos &&
           line.compare(line.size() - 201, 201, " " + std::string(200, 'x')) == 0;
  };
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    ASSERT_TRUE(isWhole(line)) << "line " << count << ": " << line.substr(0, 120);
  }
  EXPECT_EQ(count, 8 * 150); // under the limit: none trimmed
}

TEST(LinuxLogger, AnAreaSwitchedOnForOneRunWritesToTheLogFile) {
  test::TemporaryDirectory home;
  setenv("XDG_STATE_HOME", (home / "state").c_str(), 1);
  JsonSettingsStore store(home / "settings.json");
  store.setValue("LogScript", true);
  store.setValue("LogConnect", false);
  UserDefaults defaults(store, UserDefaults::argumentDomain({"lanternbud", "-LogConnect", "YES"}));
  LinuxLogger::install([&](const std::string& area) { return defaults.boolValue(area, false); }, "lanternbud");
  PXR_LOG(connectLog(), "from the command line");
  PXR_LOG(scriptLog(), "from the settings file");
  PXR_LOG(outputLog(), "never");
  pxrLogError("always");
  PXRLogger::setSharedLogger(nullptr);

  std::string content = test::readFile(home / "state/lanternbud/lanternbud App Log.log");
  EXPECT_NE(content.find("[LogConnect]"), std::string::npos) << content;
  EXPECT_NE(content.find("[LogScript]"), std::string::npos);
  EXPECT_NE(content.find("[error]"), std::string::npos);
  EXPECT_EQ(content.find("never"), std::string::npos);
}

TEST(OurLogFile, AFileAtTheLimitIsTrimmedWhenAttached) {
  test::TemporaryDirectory folder;
  auto file = folder / "big.log";
  std::string data;
  for (int i = 0; i < 6'000; ++i) data += std::to_string(100'000 + i) + std::string(93, '.') + "\n";
  test::writeFile(file, data);
  std::string error;
  auto sink = LogFileSink::open(file, error);
  ASSERT_TRUE(sink) << error;
  EXPECT_EQ(test::readFile(file), data.substr(758 * 100));

  test::writeFile(file, "short\n");
  ASSERT_TRUE(LogFileSink::open(file, error));
  EXPECT_EQ(test::readFile(file), "short\n"); // under the limit: left alone

  // While written, never past the limit however long the lines; a line met
  // again within seconds is folded.
  auto running = LogFileSink::open(file, error);
  const auto start = std::chrono::system_clock::now();
  for (int i = 0; i < 50; ++i) {
    running->write({start, "f.cpp", 1, "f", "LogConnect", std::to_string(i) + std::string(100'000, 'n')});
    ASSERT_LE(std::filesystem::file_size(file), PXRLogger::logFileLimit) << i;
  }
  for (int i = 0; i < 1000; ++i) running->write({start + std::chrono::milliseconds(i), "f.cpp", 2, "f", {}, "Flap"});
  running->write({start + std::chrono::seconds(6), "f.cpp", 3, "f", {}, "Later"});
  running.reset();
  const auto content = test::readFile(file);
  EXPECT_NE(content.find("f.cpp:2 f: Flap\n"), std::string::npos);
  EXPECT_NE(content.find("f.cpp:2 f: … repeated 999 times: Flap\n"), std::string::npos);
  EXPECT_NE(content.find("f.cpp:3 f: Later\n"), std::string::npos);
  EXPECT_NE(content.find("49nnn"), std::string::npos);
  EXPECT_LT(content.size(), PXRLogger::logFileLimit);
}

TEST(OurLogFile, AnUnwritablePlaceIsReportedNotFatal) {
  test::TemporaryDirectory folder;
  test::writeFile(folder / "not-a-folder", "");
  std::string error;
  EXPECT_FALSE(LogFileSink::open(folder / "not-a-folder/app.log", error));
  EXPECT_FALSE(error.empty());

  // The program says so on standard error too, even when it is no terminal.
  setenv("XDG_STATE_HOME", (folder / "not-a-folder/state").c_str(), 1);
  testing::internal::CaptureStderr();
  LinuxLogger::install([](const std::string&) { return false; }, "lanternbud");
  PXRLogger::setSharedLogger(nullptr);
  EXPECT_NE(testing::internal::GetCapturedStderr().find("lanternbud: No log file is written (creating " +
                                                        (folder / "not-a-folder/state/lanternbud").string()),
            std::string::npos);
}

} // namespace lb
