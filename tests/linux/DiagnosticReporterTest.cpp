#include "linux/report/LinuxDiagnosticReporter.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace lb {

// Cancelled at its last step, while the archive is begun: nothing is left
// under any name.
TEST(DiagnosticReporter, ACancelledReportLeavesNothing) {
  test::TemporaryDirectory folder;
  test::writeFile(folder / "lanternbud App Log.log", "Connecting 00:1B:66:AA:BB:CC\n");
  LinuxDiagnosticReporter reporter({{folder / "lanternbud App Log.log"},
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
  EXPECT_TRUE(reporter.saveReport(
      folder / "report.tar.gz", true, [](int, int, const std::string&) {}, cancelled));
  EXPECT_TRUE(std::filesystem::exists(folder / "report.tar.gz"));
}

} // namespace lb
