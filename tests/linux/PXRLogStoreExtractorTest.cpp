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

std::vector<std::string> lines(const std::filesystem::path& file) {
  std::vector<std::string> result;
  std::istringstream text(test::readFile(file));
  for (std::string line; std::getline(text, line);) result.push_back(line);
  return result;
}

} // namespace

// Journal files made from the export format by systemd-journal-remote, as
// journald would have written them: the extractor reads them with
// sd-journal, as it reads the machine's own.
TEST(PXRLogStoreExtractor, EachFileHoldsItsWindowAndLevelsAndEachLineItsSource) {
  test::TemporaryDirectory folder;
  const auto journal = folder / "journal";
  setenv("TZ", "UTC", 1);
  tzset();
  const char* tool = "/lib/systemd/systemd-journal-remote";
  LB_REQUIRE_SERVICE(std::filesystem::exists(tool) ? "" : std::string(tool) + " is missing: scripts/install-deps");
  // Minutes before the report, priority, fields.
  const std::vector<std::tuple<int, int, std::string>> entries{
      {1000, 7, "MESSAGE=old trace\nPXR_CATEGORY=PXRLogger\nSYSLOG_IDENTIFIER=lanternbud\nPXR_AREA=LogConnect"},
      {300, 3, "MESSAGE=old failure\nSYSLOG_IDENTIFIER=pulseaudio"},
      {100, 7, "MESSAGE=our trace\nPXR_CATEGORY=PXRLogger\nSYSLOG_IDENTIFIER=lanternbud\nPXR_AREA=LogConnect"},
      {10, 2,
       "MESSAGE=controller failed\nSYSLOG_IDENTIFIER=bluetoothd\n_EXE=/usr/libexec/bluetooth/bluetoothd\n"
       "_SYSTEMD_UNIT=bluetooth.service"},
      {5, 5, "MESSAGE=a notice\nSYSLOG_IDENTIFIER=kernel"},
      {1, 3,
       "MESSAGE=Cannot connect 00:1B:66:AA:BB:CC\nPXR_CATEGORY=PXRLogger\nSYSLOG_IDENTIFIER=lanternbud\n"
       "_EXE=/usr/bin/lanternbud\nPXR_AREA=LogConnect"},
      {-1, 3, "MESSAGE=after the report began\nSYSLOG_IDENTIFIER=lanternbud\nPXR_CATEGORY=PXRLogger"},
  };
  std::string exported;
  int monotonic = 1;
  for (const auto& [before, priority, fields] : entries) {
    const auto when = duration_cast<microseconds>((reportTime - minutes(before)).time_since_epoch()).count();
    exported += "__REALTIME_TIMESTAMP=" + std::to_string(when) +
                "\n__MONOTONIC_TIMESTAMP=" + std::to_string(monotonic++) +
                "\n_BOOT_ID=0123456789abcdef0123456789abcdef\nPRIORITY=" + std::to_string(priority) + "\n" + fields +
                "\n\n";
  }
  const auto input = folder / "export.txt";
  test::writeFile(input, exported);
  std::filesystem::create_directory(journal);
  const auto command = std::string(tool) + " -o '" + (journal / "test.journal").string() + "' '" + input.string() +
                       "' 2>&1";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;

  PXRLogStoreExtractor::Options options{.directory = journal,
                                        .accessToAllLogs = true,
                                        .now = reportTime,
                                        .transform = [](std::string line) { return "> " + line; },
                                        .cancelled = nullptr};
  const auto files = PXRLogStoreExtractor::writeLogs(folder.path(), options);
  std::vector<std::string> messages;
  for (const auto& file : files) {
    messages.emplace_back();
    for (const auto& line : lines(file)) messages.back() += line.substr(line.find("] ") + 2) + "|";
  }
  // All: 240 minutes; Errors: err and worse over 720; App: ours over 1440.
  EXPECT_EQ(messages, (std::vector<std::string>{
                          "our trace|controller failed|a notice|Cannot connect 00:1B:66:AA:BB:CC|",
                          "old failure|controller failed|Cannot connect 00:1B:66:AA:BB:CC|",
                          "old trace|our trace|Cannot connect 00:1B:66:AA:BB:CC|",
                      }));
  // A line says when, what level, who and where; fields it lacks stay empty.
  const auto errors = lines(files[1]);
  ASSERT_EQ(errors.size(), 3u);
  EXPECT_EQ(errors[0], "> 2027-01-15 03:00:00.250 e pulseaudio () [] old failure");
  EXPECT_EQ(errors[1], "> 2027-01-15 07:50:00.250 f bluetoothd (/usr/libexec/bluetooth/bluetoothd) "
                       "[bluetooth.service] controller failed");
  EXPECT_EQ(errors[2], "> 2027-01-15 07:59:00.250 e lanternbud (/usr/bin/lanternbud) [LogConnect] Cannot connect "
                       "00:1B:66:AA:BB:CC");
  EXPECT_EQ(lines(files[0])[2].substr(25, 3), " n ");
  EXPECT_EQ(PXRLogStoreExtractor::pxrFixedWidthName(std::nullopt), 'u');

  // A journal that cannot be opened is an error.
  options.directory = folder / "no such folder";
  EXPECT_THROW(PXRLogStoreExtractor::writeLogs(folder.path(), options), std::runtime_error);
}

} // namespace lb
