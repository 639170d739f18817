#include "linux/system/IcuNameCollator.h"

#include <gtest/gtest.h>

namespace lb {

TEST(IcuNameCollator, IgnoresCaseButNotLettersAndOrdersAccentsWithTheirBase) {
  IcuNameCollator collator;
  EXPECT_EQ(collator.compare("Alpha", "alpha"), 0);
  EXPECT_LT(collator.compare("alpha", "Beta"), 0);
  EXPECT_LT(collator.compare("Ärmel Buds", "Zebra Speaker"), 0); // a byte order would put Ä last
  EXPECT_NE(collator.compare("Émile", "emile"), 0);
}

} // namespace lb
