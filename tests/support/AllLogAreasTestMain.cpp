// The core's tests run with every log area on, as for a user who has turned
// them all on for a report: a log line that cannot be written (an empty
// optional, a device already gone) fails the test that reaches it.
#include "foundation/PXRLogger.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  lb::PXRLogger::setSharedLogger(std::make_shared<lb::PXRLogger>([](const std::string&) { return true; }));
  return RUN_ALL_TESTS();
}
