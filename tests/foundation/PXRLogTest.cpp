#include "foundation/PXRLog.h"
#include "foundation/PXRLogger.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace lb {

namespace {

enum class Status : std::int32_t { failed = -1, ok = 0 };
std::string pxrDescription(Status status) { return status == Status::ok ? "ok" : "failed"; }

} // namespace

// Nor does one that nobody hears, without a shared logger.
TEST(PXRLog, AnAreaThatIsOffNeverBuildsItsMessage) {
  int evaluations = 0;
  auto expensive = [&] {
    ++evaluations;
    return std::string("built");
  };
  PXRLogger::setSharedLogger(nullptr);
  PXRLog unheard("LogOn");
  unheard(expensive);
  PXR_LOG(unheard, expensive());
  PXR_LOG_ERROR("nobody listens");
  EXPECT_FALSE(unheard.isEnabled());

  test::CapturedLog log({"LogOn"});
  PXRLog off("LogOff"), on("LogOn"), switchedOnButDisabled("LogOn", true);

  off(expensive);
  PXR_LOG(off, "items", expensive());
  switchedOnButDisabled(expensive);
  PXR_LOG(switchedOnButDisabled, expensive());
  EXPECT_EQ(evaluations, 0);
  EXPECT_TRUE(log.lines().empty());

  on(expensive);
  PXR_LOG(on, "items", expensive());
  EXPECT_EQ(evaluations, 2);
  EXPECT_EQ(log.messages(), (std::vector<std::string>{"built", "items built"}));
}

TEST(PXRLog, ItemsAreJoinedByBlanksAndAbsentOnesPrintNil) {
  test::CapturedLog log({"LogConnect"});
  PXRLog area("LogConnect");
  std::optional<int> absent;
  std::optional<std::string> present = "here";
  PXR_LOG(area, "Devices:", absent, 3, present, std::vector<std::string>{"a", "b"});
  PXR_LOG(area, 42);
  PXR_LOG(area, 0.5, 2.0, true, Status::failed);
  EXPECT_EQ(log.messages(),
            (std::vector<std::string>{"Devices: nil 3 here [\"a\", \"b\"]", "42", "0.5 2.0 true failed"}));
  auto line = log.lines().front();
  EXPECT_EQ(line.area, "LogConnect");
  EXPECT_EQ(line.file, "tests/foundation/PXRLogTest.cpp"); // relative to the project
  EXPECT_NE(line.function.find("ItemsAreJoinedByBlanks"), std::string::npos) << line.function;

  EXPECT_EQ(pxrPrinting(", ", std::map<std::string, int>{{"a", 1}}, std::vector<int>{}), "[\"a\": 1], []");
  EXPECT_EQ(pxrPrinting(" "), "");
}

TEST(PXRLog, ErrorsAreWrittenWithEveryAreaOff) {
  test::CapturedLog log;
  PXR_LOG_ERROR("plain");
  PXR_LOG_ERROR("joined", std::optional<int>(), 7);
  EXPECT_EQ(log.messages(), (std::vector<std::string>{"plain", "joined nil 7"}));
  EXPECT_FALSE(log.lines().front().area);

  // Outside text (a device's name) can neither begin a line nor drive a
  // terminal: C0, DEL and C1 are escaped, other text stays.
  PXR_LOG_ERROR("Mouse\n2026-11-24 09:41:07.250 [error] FORGED\x1b[2J\x1b]0;pwned\a\x7f\u009b Köln\t");
  EXPECT_EQ(log.messages().back(),
            "Mouse\\n2026-11-24 09:41:07.250 [error] FORGED\\u001b[2J\\u001b]0;pwned\\u0007\\u007f\\u009b Köln\\t");
  EXPECT_EQ(pxrPrintableLines("a\x1b\nb\n"), "a\\u001b\nb\n");
}

TEST(PXRLogger, TrimmingDropsWholeLinesFromTheFront) {
  // Past the limit (524,291 bytes) the first line goes; at exactly the limit
  // only blank lines do.
  std::string withGaps = "\n" + std::string(524'284, 'x') + "\n\n\nend";
  EXPECT_EQ(PXRLogger::trimmedLog(withGaps), "end\n");

  std::string exact = std::string(262'143, 'a') + "\n\n" + std::string(262'142, 'b') + "\n";
  EXPECT_EQ(PXRLogger::trimmedLog(exact), std::string(262'143, 'a') + "\n" + std::string(262'142, 'b') + "\n");
  EXPECT_EQ(PXRLogger::trimmedLog("\n\n"), "");
}

} // namespace lb
