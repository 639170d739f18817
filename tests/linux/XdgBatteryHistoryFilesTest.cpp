#include "linux/xdg/XdgBatteryHistoryFiles.h"

#include "core/BatteryHistories.h"
#include "foundation/FaultPoint.h"
#include "sim/VirtualEventLoop.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lb {

namespace {

constexpr const char* buds = "00:11:22:33:44:55";

mode_t modeOf(const std::filesystem::path& path) {
  struct stat info {};
  stat(path.c_str(), &info);
  return info.st_mode & 0777;
}

} // namespace

// A crash between writing the new history and putting it in place leaves
// the previous one whole; its leftover goes when the folder is next opened.
TEST(XdgBatteryHistoryFiles, ACrashBeforeTheRenameLeavesThePreviousHistoryWhole) {
  test::TemporaryDirectory home;
  const auto folder = home / "battery-history";
  XdgBatteryHistoryFiles files(folder);
  ASSERT_TRUE(files.write(buds, "previous"));
  EXPECT_EQ(files.fileOf(buds), folder / "001122334455.json");
  EXPECT_EQ(modeOf(folder), 0700u);
  EXPECT_EQ(modeOf(files.fileOf(buds)), 0600u);

  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    setenv("LANTERNBUD_FAULT_POINT", "before-rename", 1);
    files.write(buds, "next");
    _exit(0); // the fault point was never reached
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), faultPointStatus);
  EXPECT_EQ(files.read(buds).value(), "previous");
  const auto count = [&] { return std::distance(std::filesystem::directory_iterator(folder), {}); };
  EXPECT_EQ(count(), 2); // the history and the crashed writer's leftover

  XdgBatteryHistoryFiles reopened(folder);
  EXPECT_EQ(count(), 1);
  ASSERT_TRUE(reopened.remove(buds));
  EXPECT_EQ(reopened.read(buds).value(), std::nullopt);
}

// A file that is no history is kept aside for the user, and a new one begins.
TEST(XdgBatteryHistoryFiles, WhatIsNoHistoryIsSetAsideNotWrittenOver) {
  test::TemporaryDirectory home;
  XdgBatteryHistoryFiles files(home.path());
  ASSERT_TRUE(files.write(buds, "{\"sides\": 3}"));
  VirtualEventLoop loop;
  BatteryHistories histories(files, loop);
  EXPECT_TRUE(histories.of(buds).empty());
  histories.levelsRead(buds, {BatteryType::Kind::single, 50, 0});
  loop.runDue();
  EXPECT_EQ(test::readFile(files.fileOf(buds).string() + ".unreadable"), "{\"sides\": 3}");
  std::string error;
  const auto kept = BatteryHistory::fromJson(files.read(buds).value().value_or(""), error);
  ASSERT_TRUE(kept) << error;
  EXPECT_EQ(kept->sides().at("battery").back().level, 50);
}

} // namespace lb
