#include "linux/system/SpawnScriptRunner.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/Wait.h"

#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <unistd.h>

namespace lb {

namespace {

// Scripts in a folder whose name would mean something to a shell.
struct Scripts {
  test::TemporaryDirectory home;
  std::filesystem::path folder = home / "data dir; $(touch pwned) `touch pwned2`";
  std::string path = (folder / "1.connected").string();
  SpawnScriptRunner runner;
  std::optional<ScriptRunner::Outcome> outcome;

  Result<> start(const std::string& text, Seconds limit = Seconds(300),
                 std::filesystem::perms mode = std::filesystem::perms::owner_all) {
    std::filesystem::create_directories(folder);
    test::writeFile(path, text);
    std::filesystem::permissions(path, mode);
    outcome.reset();
    return runner.start(path, limit, [this](const ScriptRunner::Outcome& ended) { outcome = ended; });
  }

  // How the script ended, once it has.
  std::string ended() {
    EXPECT_TRUE(test::waitUntil([&] { return outcome.has_value(); }));
    return outcome ? outcome->description : "";
  }

  // The process that the script wrote to `pid`, once it has.
  pid_t written() {
    EXPECT_TRUE(test::waitUntil([&] { return !test::readFile(home / "pid").empty(); }));
    return std::atoi(test::readFile(home / "pid").c_str());
  }
};

// Gone, or a zombie that its new parent has yet to reap.
bool gone(pid_t pid) {
  return test::waitUntil([&] {
    auto text = test::readFile("/proc/" + std::to_string(pid) + "/stat");
    return text.empty() || text.find(") Z ") != std::string::npos;
  });
}

} // namespace

TEST(SpawnScriptRunner, RunsAScriptAsItsOwnProgramAndEndsItWithWhatItStarted) {
  Scripts s;
  ASSERT_TRUE(s.start("#!/bin/sh\necho \"$0\" > '" + (s.home / "marker").string() + "'\n"));
  ASSERT_EQ(s.ended(), "exited with status 0");
  EXPECT_TRUE(s.outcome->success);
  EXPECT_EQ(test::readFile(s.home / "marker"), s.path + "\n");
  EXPECT_FALSE(std::filesystem::exists("pwned"));
  EXPECT_FALSE(std::filesystem::exists(s.home / "pwned"));

  // It returns at once, with the script running in a process group of its own.
  ASSERT_TRUE(s.start("#!/bin/sh\necho $$ > '" + (s.home / "pid").string() + "'\nexec sleep 60\n"));
  pid_t pid = s.written();
  EXPECT_EQ(getpgid(pid), pid);
  kill(pid, SIGKILL);
  EXPECT_EQ(s.ended(), "killed by signal 9");

  // What cannot start is named, with what to mend; no shell is asked to
  // make sense of a file without an interpreter line.
  auto refused = s.start("#!/bin/sh\n", Seconds(300),
                         std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.failure().reason, "it is not executable (chmod u+x '" + s.path + "')");
  refused = s.start("#!/usr/bin/nonesuch -x\n");
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.failure().reason, "the interpreter /usr/bin/nonesuch on its first line does not exist");
  refused = s.start("touch pwned3\n");
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.failure().reason, "it does not begin with an interpreter line such as #!/bin/sh");
  EXPECT_FALSE(std::filesystem::exists("pwned3"));

  // Past its time limit, or running at quit, it is ended with what it
  // started: here a child of the script's own.
  std::filesystem::remove(s.home / "pid");
  const std::string child = "sleep 60 &\necho $! > '" + (s.home / "pid").string() + "'\nwait\n";
  ASSERT_TRUE(s.start("#!/bin/sh\n" + child, Seconds(0.5)));
  EXPECT_EQ(s.ended(), "ended after running longer than 0.5 s (killed by signal 15)");
  EXPECT_TRUE(gone(s.written()));

  // At quit, one that ignores SIGTERM is killed with what it started.
  std::filesystem::remove(s.home / "pid");
  ASSERT_TRUE(s.start("#!/bin/sh\ntrap '' TERM\n" + child));
  pid = s.written();
  s.runner.endRunning(Seconds(0.5));
  EXPECT_TRUE(gone(pid));
}

} // namespace lb
