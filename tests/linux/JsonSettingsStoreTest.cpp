#include "foundation/JsonSettingsStore.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lb {

namespace {

SettingsValue::Dictionary sampleDevice() {
  return {{"device", "00-11-22-33-44-55"},
          {"icon", 3},
          {"keepDefaultAudioInput", true},
          {"fraction", 0.25},
          {"seconds", 2.0},
          {"bookmark", SettingsValue::Data{0x00, 0xff, 0x10}}};
}

std::vector<std::filesystem::path> filesIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) files.push_back(entry.path());
  return files;
}

} // namespace

TEST(JsonSettingsStore, KeepsEveryKindOfValueAcrossARestart) {
  test::TemporaryDirectory home;
  auto file = home / "lanternbud/settings.json";
  {
    JsonSettingsStore store(file);
    store.setValue("devices", SettingsValue::Array{sampleDevice()});
    store.setValue("currentSettingVersion", "2.8.2");
    store.setValue("ConnectionWaitInterval", 3.0);
    store.setValue("MissingAudioDeviceTries", 3);
    store.setValue("gone", true);
    store.removeValue("gone");
  }
  JsonSettingsStore reopened(file);
  EXPECT_EQ(reopened.value("devices"), SettingsValue(SettingsValue::Array{sampleDevice()}));
  EXPECT_EQ(reopened.value("currentSettingVersion"), SettingsValue("2.8.2"));
  // A real that happens to be whole stays a real, an integer an integer.
  EXPECT_TRUE(reopened.value("ConnectionWaitInterval")->is<double>());
  EXPECT_TRUE(reopened.value("MissingAudioDeviceTries")->is<std::int64_t>());
  EXPECT_FALSE(reopened.value("gone"));

  struct stat info {};
  ASSERT_EQ(stat(file.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0600u);
  EXPECT_EQ(filesIn(file.parent_path()).size(), 1u); // no temporary files left behind
}

TEST(JsonSettingsStore, AnUnreadableFileIsMovedAsideAndReported) {
  test::CapturedLog log;
  test::TemporaryDirectory home;
  auto file = home / "settings.json";
  for (std::string broken : {"{\"devices\": [1, 2,", "[\"an array\"]", "{\"x\": null}"}) {
    test::writeFile(file, broken);
    JsonSettingsStore store(file);
    EXPECT_FALSE(store.value("devices"));
    EXPECT_FALSE(std::filesystem::exists(file));
    auto files = filesIn(home.path());
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(test::readFile(files[0]), broken); // preserved byte for byte
    EXPECT_TRUE(log.contains("It was moved to " + files[0].string())) << log.messages().back();
    std::filesystem::remove(files[0]);
  }
}

TEST(JsonSettingsStore, ACrashWhileWritingLeavesTheOldFileIntact) {
  test::TemporaryDirectory home;
  auto file = home / "settings.json";
  {
    JsonSettingsStore store(file);
    store.setValue("currentSettingVersion", "2.8.2");
  }
  const std::string before = test::readFile(file);

  // The child may write only a few bytes; the kernel kills it with SIGXFSZ
  // halfway through the temporary file.
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    rlimit limit{64, 64};
    setrlimit(RLIMIT_FSIZE, &limit);
    JsonSettingsStore store(file);
    store.setValue("devices", SettingsValue::Array(200, sampleDevice()));
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGXFSZ);

  EXPECT_EQ(test::readFile(file), before);
  JsonSettingsStore after(file);
  EXPECT_EQ(after.value("currentSettingVersion"), SettingsValue("2.8.2"));
  EXPECT_FALSE(after.value("devices"));
}

TEST(JsonSettingsStore, AFailedWriteIsReportedAndTheOldFileKept) {
  test::TemporaryDirectory home;
  auto file = home / "settings.json";
  JsonSettingsStore(file).setValue("currentSettingVersion", "2.8.2");
  const std::string before = test::readFile(file);

  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // With SIGXFSZ ignored the write fails with EFBIG instead of killing us.
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit{64, 64};
    setrlimit(RLIMIT_FSIZE, &limit);
    test::CapturedLog log;
    JsonSettingsStore store(file);
    store.setValue("devices", SettingsValue::Array(200, sampleDevice()));
    bool reported = log.contains("the previous file is unchanged");
    _exit(reported && store.value("devices") ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0) << "the failure was not reported, or the value was lost for the run";
  EXPECT_EQ(test::readFile(file), before);
  EXPECT_EQ(filesIn(home.path()).size(), 1u);
}

TEST(JsonSettingsStore, ANumberThatIsNotFiniteIsRefused) {
  test::CapturedLog log;
  test::TemporaryDirectory home;
  JsonSettingsStore store(home / "settings.json");
  store.setValue("NotAudioOutputFraction", std::numeric_limits<double>::quiet_NaN());
  EXPECT_FALSE(store.value("NotAudioOutputFraction"));
  EXPECT_TRUE(log.contains("not finite"));
}

} // namespace lb
