#include "foundation/PXRLogger.h"
#include "linux/logging/LogFileSink.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace lb {

TEST(LogFileSink, AFileAtTheLimitIsTrimmedWhenOpenedAndNeverGrowsPastIt) {
  test::TemporaryDirectory folder;
  auto file = folder / "big.log";
  std::string data;
  for (int i = 0; i < 6'000; ++i) data += std::to_string(100'000 + i) + std::string(93, '.') + "\n";
  test::writeFile(file, data);
  std::string error;
  ASSERT_TRUE(LogFileSink::open(file, error)) << error;
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

} // namespace lb
