#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace lb::test {

// scripts/check sets LANTERNBUD_REQUIRE_SERVICES: there a service that does
// not start is a failure, since a skip would hide it. Elsewhere such a test
// is skipped, saying why.
inline bool servicesRequired() {
  const char* value = std::getenv("LANTERNBUD_REQUIRE_SERVICES");
  return value && std::string(value) == "1";
}

} // namespace lb::test

// Ends the test unless `reason` is empty: a failure inside scripts/check, a
// skip elsewhere.
#define LB_REQUIRE_SERVICE(reason)                                    \
  do {                                                                \
    const std::string lbServiceProblem = (reason);                    \
    if (!lbServiceProblem.empty()) {                                  \
      if (::lb::test::servicesRequired()) FAIL() << lbServiceProblem; \
      GTEST_SKIP() << lbServiceProblem;                               \
    }                                                                 \
  } while (false)
