#include "linux/report/LinuxDiagnosticReporter.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace lb {

// Cancelled at its last step, while the archive is begun: nothing is left
// under any name.
TEST(LinuxDiagnosticReporter, ACancelledReportLeavesNothing) {
  test::TemporaryDirectory folder;
  test::writeFile(folder / "lanternbud App Log.log", "Connecting 00:1B:66:AA:BB:CC\n");
  LinuxDiagnosticReporter reporter({{folder / "lanternbud App Log.log"},
                                    folder / "no histories",
                                    folder / "main.conf",
                                    folder / "no journal",
                                    QDBusConnection("not connected")});
  std::atomic<bool> cancelled{false};
  std::vector<std::string> steps;
  auto result = reporter.saveReport(
      folder / "report.tar.gz", true,
      [&](int done, int total, const std::string& what) {
        steps.push_back(std::to_string(done) + "/" + std::to_string(total) + " " + what);
        if (done == 4) cancelled = true;
      },
      cancelled);
  ASSERT_FALSE(result);
  EXPECT_EQ(result.failure().reason, "cancelled");
  EXPECT_EQ(steps.back(), "4/5 Writing the report");
  auto left = std::distance(std::filesystem::directory_iterator(folder.path()), std::filesystem::directory_iterator());
  EXPECT_EQ(left, 1) << "only the log file";

  cancelled = false;
  const auto save = [&](const std::filesystem::path& file) {
    return reporter.saveReport(
        file, true, [](int, int, const std::string&) {}, cancelled);
  };
  // Any name the folder takes is taken; a FIFO (like a device node) in the
  // way is refused and stays.
  const auto longest = folder / (std::string(248, 'r') + ".tar.gz");
  EXPECT_TRUE(save(longest));
  EXPECT_TRUE(std::filesystem::is_regular_file(longest));
  ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
  auto refused = save(folder / "fifo");
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.failure().reason, (folder / "fifo").string() + " exists and is not a file; choose a file name");
  EXPECT_TRUE(std::filesystem::is_fifo(folder / "fifo"));
}

} // namespace lb
