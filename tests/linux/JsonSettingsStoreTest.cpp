#include "foundation/JsonSettingsStore.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <csignal>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>

namespace lb {

namespace {

SettingsValue::Dictionary sampleDevice() {
  return {{"device", "ünïcode \"quoted\" 00-11-22-33-44-55"},
          {"icon", 3},
          {"negative", std::int64_t{-9'000'000'000}},
          {"empty", SettingsValue::Dictionary{}},
          {"keepDefaultAudioInput", true},
          {"fraction", 0.25},
          {"seconds", 2.0},
          {"bookmark", SettingsValue::Data{0x00, 0xff, 0x10}}};
}

// Every file but the writers' lock.
std::vector<std::filesystem::path> filesIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".lock") files.push_back(entry.path());
  }
  return files;
}

} // namespace

TEST(JsonSettingsStore, KeepsEveryKindOfValueAcrossARestartAndOtherWriters) {
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
    store.setValue("NotAudioOutputFraction", std::numeric_limits<double>::quiet_NaN()); // refused
  }
  JsonSettingsStore reopened(file);
  EXPECT_EQ(reopened.value("devices"), SettingsValue(SettingsValue::Array{sampleDevice()}));
  EXPECT_EQ(reopened.value("currentSettingVersion"), SettingsValue("2.8.2"));
  // A real that happens to be whole stays a real, an integer an integer.
  EXPECT_TRUE(reopened.value("ConnectionWaitInterval")->is<double>());
  EXPECT_TRUE(reopened.value("MissingAudioDeviceTries")->is<std::int64_t>());
  EXPECT_FALSE(reopened.value("gone"));
  EXPECT_FALSE(reopened.value("NotAudioOutputFraction"));
  reopened.setValue("currentSettingVersion", "2.8.2"); // unchanged: nothing to write

  for (auto [path, mode] : {std::pair{file, 0600u}, std::pair{file.parent_path(), 0700u}}) {
    struct stat info {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, mode) << path;
  }

  // A writer reads the file again first: what another store wrote since it
  // read stays.
  JsonSettingsStore first(file), second(file);
  first.setValue("LogScript", true);
  second.setValue("LogAudioOutput", true);
  JsonSettingsStore after(file);
  EXPECT_TRUE(after.value("LogScript") && after.value("LogAudioOutput"));

  // settings.json -> link2 -> real.json: written through, every link kept; a
  // killed writer's leftovers go at the next start.
  auto target = home / "lanternbud/real.json";
  std::filesystem::rename(file, target);
  std::filesystem::create_symlink("real.json", home / "lanternbud/link2");
  std::filesystem::create_symlink("link2", file);
  test::writeFile(home / "lanternbud/.real.json.partial-Ab12Cd", "half");
  JsonSettingsStore linked(file);
  EXPECT_FALSE(std::filesystem::exists(home / "lanternbud/.real.json.partial-Ab12Cd"));
  linked.setValue("LogConnect", true);
  EXPECT_TRUE(std::filesystem::is_symlink(file));
  EXPECT_TRUE(std::filesystem::is_symlink(home / "lanternbud/link2"));
  EXPECT_EQ(JsonSettingsStore(target).value("LogConnect"), SettingsValue(true));
}

// What cannot be read is never written over, and a reader changes nothing;
// a writer moves it aside, each byte for byte under a name of its own, also
// within a second.
TEST(JsonSettingsStore, NothingIsWrittenOverThatCannotBeWrittenOrRead) {
  test::TemporaryDirectory home;
  auto file = home / "settings.json";
  // A change that cannot be written leaves the file as it was, stays in
  // effect, is said, and goes with the next save that works.
  JsonSettingsStore limited(file);
  limited.setValue("currentSettingVersion", "2.8.2");
  const std::string before = test::readFile(file);

  // With SIGXFSZ ignored, a write past the size limit fails with EFBIG.
  auto* handler = signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit small{64, limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  limited.setValue("devices", SettingsValue::Array(200, sampleDevice()));
  setrlimit(RLIMIT_FSIZE, &limit);
  signal(SIGXFSZ, handler);
  EXPECT_TRUE(limited.saveProblem());
  EXPECT_EQ(test::readFile(file), before);
  EXPECT_TRUE(limited.value("devices"));
  limited.setValue("LogConnect", true);
  EXPECT_FALSE(limited.saveProblem());
  JsonSettingsStore after(file);
  EXPECT_EQ(after.value("devices"), SettingsValue(SettingsValue::Array(200, sampleDevice())));
  EXPECT_EQ(after.value("LogConnect"), SettingsValue(true));
  EXPECT_EQ(filesIn(home.path()).size(), 1u);

  test::writeFile(file, "{\"devices\": [1, 2,");
  JsonSettingsStore reader(file, JsonSettingsStore::Access::readOnly);
  EXPECT_EQ(test::readFile(file), "{\"devices\": [1, 2,");
  EXPECT_FALSE(reader.canSave());
  std::set<std::string> kept;
  for (std::string broken : {"{\"devices\": [1, 2,", "[\"an array\"]", "{\"x\": null}"}) {
    test::writeFile(file, broken);
    JsonSettingsStore store(file);
    EXPECT_FALSE(store.value("devices"));
    EXPECT_FALSE(std::filesystem::exists(file));
    kept.insert(broken);
  }
  std::set<std::string> found;
  for (const auto& aside : filesIn(home.path())) found.insert(test::readFile(aside));
  EXPECT_EQ(found, kept);

  // A FIFO is not opened (that would wait for a writer for ever) nor replaced.
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  JsonSettingsStore fifo(file);
  fifo.setValue("LogConnect", true);
  EXPECT_EQ(fifo.saveProblem(), file.string() + " is a FIFO, not a file, and nothing is saved while it stays so");
  EXPECT_TRUE(std::filesystem::is_fifo(file));

  // A link to nowhere is said, and nothing is made where it points.
  std::filesystem::remove(file);
  std::filesystem::create_symlink(home / "gone/settings.json", file);
  JsonSettingsStore dangling(file);
  dangling.setValue("LogConnect", true);
  EXPECT_TRUE(dangling.saveProblem());
  EXPECT_FALSE(std::filesystem::exists(home / "gone"));
}

} // namespace lb
