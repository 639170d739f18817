#include "foundation/PXRCache.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace lb {

using Keys = std::vector<std::string>;

TEST(PXRCache, ReadsDoNotRefreshButWritesDo) {
  PXRCache<std::string, int> read(2);
  read.setValue("a", 1);
  read.setValue("b", 2);
  EXPECT_EQ(read.value("a"), 1);
  read.setValue("c", 3);
  EXPECT_EQ(read.keys(), (Keys{"c", "b"}));
  EXPECT_FALSE(read.value("a"));

  PXRCache<std::string, int> written(2);
  written.setValue("a", 1);
  written.setValue("b", 2);
  written.setValue("a", 10);
  written.setValue("c", 3);
  EXPECT_EQ(written.keys(), (Keys{"c", "a"}));
  EXPECT_EQ(written.value("a"), 10);
}

TEST(PXRCache, ReplacingInAFullCacheEvictsNothing) {
  PXRCache<std::string, int> cache(2);
  cache.setDebug(true);
  cache.setValue("a", 1);
  cache.setValue("b", 2);
  cache.setValue("a", 3);
  EXPECT_EQ(cache.count(), 2);
  EXPECT_EQ(cache.keys(), (Keys{"a", "b"}));

  PXRCache<std::string, int> single(1);
  single.setValue("x", 1);
  single.setValue("y", 2);
  EXPECT_EQ(single.keys(), Keys{"y"});
}

TEST(PXRCache, RemovingAndClearing) {
  PXRCache<std::string, int> cache(3);
  cache.setDebug(true);
  cache.remove("missing");
  EXPECT_EQ(cache.count(), 0);
  cache.setValue("a", 1);
  cache.setValue("b", 2);
  cache.remove("a");
  EXPECT_EQ(cache.count(), 1);
  EXPECT_EQ(cache.keys(), Keys{"b"});
  cache.removeAll();
  EXPECT_EQ(cache.count(), 0);
  cache.setValue("c", 3);
  EXPECT_EQ(cache.keys(), Keys{"c"});
}

TEST(PXRCache, FillStoresNothingWhenItsBlockThrows) {
  PXRCache<std::string, int> cache(4);
  int runs = 0;
  auto failing = [&]() -> int {
    ++runs;
    throw std::runtime_error("unavailable");
  };
  EXPECT_THROW(cache.fill("k", failing), std::runtime_error);
  EXPECT_FALSE(cache.value("k"));
  EXPECT_THROW(cache.fill("k", failing), std::runtime_error);
  EXPECT_EQ(runs, 2);
  EXPECT_EQ(cache.fill("k", [] { return 5; }), 5);
  EXPECT_EQ(cache.fill("k", []() -> int { throw std::logic_error("not run on a hit"); }), 5);
}

TEST(PXRCache, StaysConsistentUnderChurn) {
  PXRCache<int, int> cache(16);
  cache.setDebug(true); // every change checks list against dictionary
  for (int i = 0; i < 2'000; ++i) {
    cache.setValue((i * 7) % 40, i);
    if (i % 3 == 0) cache.remove((i * 11) % 40);
  }
  EXPECT_LE(cache.count(), 16);
  EXPECT_EQ(static_cast<int>(cache.keys().size()), cache.count());
}

TEST(PXRDoublyLinkedList, LinksStayRightThroughEveryOperation) {
  PXRDoublyLinkedList<int> list{1, 2, 3};
  list.debug = true;
  auto* four = list.append(4);
  auto* zero = list.prepend(0);
  list.moveToFirst(four);
  EXPECT_EQ(list.payloads(), (std::vector<int>{4, 0, 1, 2, 3}));
  list.moveToFirst(list.last());
  list.remove(zero);
  EXPECT_EQ(list.payloads(), (std::vector<int>{3, 4, 1, 2}));
  EXPECT_EQ(list.removeFirst()->payload, 3);
  EXPECT_EQ(list.removeLast()->payload, 2);
  EXPECT_EQ(list.first()->payload, 4);
  EXPECT_EQ(list.last()->payload, 1);
  EXPECT_EQ(list.last()->previous(), list.first());
  list.removeAll();
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.removeLast(), nullptr);
}

TEST(PXRDoublyLinkedList, TheNodeJustVisitedMayBeRemoved) {
  PXRDoublyLinkedList<int> list{1, 2, 3, 4};
  for (auto& node : list) {
    if (node.payload % 2 == 0) list.remove(&node);
  }
  EXPECT_EQ(list.payloads(), (std::vector<int>{1, 3}));
}

TEST(PXRDoublyLinkedList, ALongListIsFreedWithoutDeepRecursion) {
  // Nested destruction of 100,000 nodes would overflow the stack, the more so
  // under the sanitizers.
  auto list = std::make_unique<PXRDoublyLinkedList<int>>();
  for (int i = 0; i < 100'000; ++i) list->append(i);
  EXPECT_EQ(list->last()->payload, 99'999);
  list.reset();
}

} // namespace lb
