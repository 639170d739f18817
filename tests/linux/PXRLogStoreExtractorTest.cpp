#include "linux/report/PXRLogStoreExtractor.h"
#include "tests/support/RequireService.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <ctime>
#include <filesystem>

namespace lb {

namespace {

using namespace std::chrono;

// 2027-01-15 08:00:00.250 UTC
const system_clock::time_point reportTime = system_clock::time_point(seconds(1'800'000'000) + milliseconds(250));

struct Written {
  minutes before;
  int priority;
  std::string fields;
};

// Journal files made from the export format by systemd-journal-remote, as
// journald would have written them: the extractor reads them with
// sd-journal, as it reads the machine's own.
class PXRLogStoreExtractorTest : public ::testing::Test {
protected:
  void SetUp() override {
    setenv("TZ", "UTC", 1);
    tzset();
    const char* tool = "/lib/systemd/systemd-journal-remote";
    LB_REQUIRE_SERVICE(std::filesystem::exists(tool) ? "" : std::string(tool) + " is missing: scripts/install-deps");
    const std::vector<Written> entries{
        {minutes(1000), 7,
         "MESSAGE=old trace\nPXR_CATEGORY=PXRLogger\nSYSLOG_IDENTIFIER=lanternbud\nPXR_AREA=LogConnect"},
        {minutes(300), 3, "MESSAGE=old failure\nSYSLOG_IDENTIFIER=pulseaudio"},
        {minutes(100), 7,
         "MESSAGE=our trace\nPXR_CATEGORY=PXRLogger\nSYSLOG_IDENTIFIER=lanternbud\nPXR_AREA=LogConnect"},
        {minutes(10), 2,
         "MESSAGE=controller failed\nSYSLOG_IDENTIFIER=bluetoothd\n_EXE=/usr/libexec/bluetooth/bluetoothd\n"
         "_SYSTEMD_UNIT=bluetooth.service"},
        {minutes(5), 5, "MESSAGE=a notice\nSYSLOG_IDENTIFIER=kernel"},
        {minutes(1), 3,
         "MESSAGE=Cannot connect 00:1B:66:AA:BB:CC\nPXR_CATEGORY=PXRLogger\nSYSLOG_IDENTIFIER=lanternbud\n"
         "_EXE=/usr/bin/lanternbud\nPXR_AREA=LogConnect"},
        {minutes(-1), 3, "MESSAGE=after the report began\nSYSLOG_IDENTIFIER=lanternbud\nPXR_CATEGORY=PXRLogger"},
    };
    std::string exported;
    int monotonic = 1;
    for (const auto& entry : entries) {
      const auto when = duration_cast<microseconds>((reportTime - entry.before).time_since_epoch()).count();
      exported += "__REALTIME_TIMESTAMP=" + std::to_string(when) +
                  "\n__MONOTONIC_TIMESTAMP=" + std::to_string(monotonic++) +
                  "\n_BOOT_ID=0123456789abcdef0123456789abcdef\nPRIORITY=" + std::to_string(entry.priority) + "\n" +
                  entry.fields + "\n\n";
    }
    const auto input = folder / "export.txt";
    test::writeFile(input, exported);
    std::filesystem::create_directory(journal);
    const auto command = std::string(tool) + " -o '" + (journal / "test.journal").string() + "' '" + input.string() +
                         "' 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
  }

  std::vector<std::string> lines(const std::filesystem::path& file) {
    std::vector<std::string> result;
    std::istringstream text(test::readFile(file));
    for (std::string line; std::getline(text, line);) result.push_back(line);
    return result;
  }

  std::vector<std::string> extract(bool accessToAllLogs) {
    PXRLogStoreExtractor::Options options;
    options.directory = journal;
    options.accessToAllLogs = accessToAllLogs;
    options.now = reportTime;
    options.transform = [](std::string line) { return "> " + line; };
    const auto out = folder / (accessToAllLogs ? "all" : "restricted");
    std::filesystem::create_directory(out);
    auto files = PXRLogStoreExtractor::writeLogs(out, options);
    EXPECT_EQ(files, (std::vector{out / "Journal All.log", out / "Journal Errors.log", out / "Journal App.log"}));
    std::vector<std::string> messages;
    for (const auto& file : files) {
      std::string found;
      for (const auto& line : lines(file)) found += line.substr(line.find("] ") + 2) + "|";
      messages.push_back(found);
    }
    return messages;
  }

  test::TemporaryDirectory folder;
  std::filesystem::path journal = folder / "journal";
};

} // namespace

TEST_F(PXRLogStoreExtractorTest, EachFileHoldsItsWindowAndLevels) {
  // All: 240 minutes; Errors: err and worse over 720; App: ours over 1440.
  EXPECT_EQ(extract(true), (std::vector<std::string>{
                               "our trace|controller failed|a notice|Cannot connect 00:1B:66:AA:BB:CC|",
                               "old failure|controller failed|Cannot connect 00:1B:66:AA:BB:CC|",
                               "old trace|our trace|Cannot connect 00:1B:66:AA:BB:CC|",
                           }));
  // A user who may read only their own journal: 15, 240 and 240 minutes.
  EXPECT_EQ(extract(false), (std::vector<std::string>{
                                "controller failed|a notice|Cannot connect 00:1B:66:AA:BB:CC|",
                                "controller failed|Cannot connect 00:1B:66:AA:BB:CC|",
                                "our trace|Cannot connect 00:1B:66:AA:BB:CC|",
                            }));
}

TEST_F(PXRLogStoreExtractorTest, ALineSaysWhenWhatLevelWhoAndWhere) {
  extract(true);
  const auto errors = lines(folder / "all/Journal Errors.log");
  ASSERT_EQ(errors.size(), 3u);
  EXPECT_EQ(errors[1], "> 2027-01-15 07:50:00.250 f bluetoothd (/usr/libexec/bluetooth/bluetoothd) "
                       "[bluetooth.service] controller failed");
  EXPECT_EQ(errors[2], "> 2027-01-15 07:59:00.250 e lanternbud (/usr/bin/lanternbud) [LogConnect] Cannot connect "
                       "00:1B:66:AA:BB:CC");
  EXPECT_EQ(errors[0], "> 2027-01-15 03:00:00.250 e pulseaudio () [] old failure"); // fields it lacks stay empty
  const auto all = lines(folder / "all/Journal All.log");
  EXPECT_EQ(all[2].substr(25, 3), " n ");
  EXPECT_EQ(PXRLogStoreExtractor::pxrFixedWidthName(std::nullopt), 'u');
  EXPECT_EQ(PXRLogStoreExtractor::pxrFixedWidthName(6), 'i');
}

TEST_F(PXRLogStoreExtractorTest, AJournalThatCannotBeOpenedIsAnError) {
  PXRLogStoreExtractor::Options options;
  options.directory = folder / "no such folder";
  EXPECT_THROW(PXRLogStoreExtractor::writeLogs(folder.path(), options), std::runtime_error);
}

} // namespace lb
