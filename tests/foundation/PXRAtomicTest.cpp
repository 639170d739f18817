#include "foundation/PXRAtomic.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace lb {

TEST(PXRAtomic, AMutationReturnsItsResultAndAThrowKeepsWhatWasDone) {
  // A mutation's result is returned; a throw keeps what was changed before
  // it. The label names where the value was made.
  PXRAtomic<std::vector<int>> list({});
  const auto made = "PXRAtomicTest.cpp:" + std::to_string(__LINE__ - 1);
  const auto size = list.mutate([](std::vector<int>& v) {
    v.push_back(1);
    return v.size();
  });
  EXPECT_EQ(size, 1u);
  EXPECT_THROW(list.mutate([](std::vector<int>& v) {
    v.push_back(2);
    throw std::runtime_error("after the change");
  }),
               std::runtime_error);
  EXPECT_EQ(list.value(), (std::vector<int>{1, 2}));
  list.setValue({5});
  EXPECT_EQ(list.value(), std::vector<int>{5});
  EXPECT_NE(list.label().find(made), std::string::npos) << list.label();
}

} // namespace lb
