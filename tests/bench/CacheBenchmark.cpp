// Compares PXRCache with a plain unordered_map + list LRU of the same limit,
// single-threaded, and prints operations per second and the ratio. A third
// column puts the plain LRU behind a std::mutex, the price of thread safety
// that PXRCache pays on every operation.
#include "foundation/PXRCache.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <list>
#include <mutex>
#include <random>
#include <unordered_map>
#include <vector>

namespace {

// The baseline: recency by writes, as PXRCache keeps it, with no lock.
class PlainLru {
public:
  explicit PlainLru(std::size_t limit) : limit_(limit) { map_.reserve(limit); }

  void setValue(std::uint32_t key, std::uint64_t value) {
    if (auto found = map_.find(key); found != map_.end()) {
      order_.splice(order_.begin(), order_, found->second.position);
      found->second.value = value;
      return;
    }
    if (map_.size() == limit_) {
      map_.erase(order_.back());
      order_.pop_back();
    }
    order_.push_front(key);
    map_.emplace(key, Entry{value, order_.begin()});
  }

  const std::uint64_t* value(std::uint32_t key) const {
    auto found = map_.find(key);
    return found == map_.end() ? nullptr : &found->second.value;
  }

private:
  struct Entry {
    std::uint64_t value;
    std::list<std::uint32_t>::iterator position;
  };
  std::size_t limit_;
  std::list<std::uint32_t> order_;
  std::unordered_map<std::uint32_t, Entry> map_;
};

template <class Body>
double operationsPerSecond(std::size_t operations, Body body) {
  auto start = std::chrono::steady_clock::now();
  body();
  double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return static_cast<double>(operations) / seconds;
}

} // namespace

int main() {
  constexpr int limit = 1000; // the program's caches hold 1000 entries
  constexpr std::size_t operations = 4'000'000;
  std::mt19937 random(42);
  std::uniform_int_distribution<std::uint32_t> keyOf(0, 2 * limit); // about half miss
  std::vector<std::uint32_t> keys(operations);
  for (auto& key : keys) key = keyOf(random);

  volatile std::uint64_t sink = 0;
  for (int round = 0; round < 3; ++round) {
    lb::PXRCache<std::uint32_t, std::uint64_t> cache(limit);
    PlainLru plain(limit);
    PlainLru locked(limit);
    std::mutex mutex;

    double cacheStores = operationsPerSecond(operations, [&] {
      for (std::size_t i = 0; i < operations; ++i) cache.setValue(keys[i], i);
    });
    double plainStores = operationsPerSecond(operations, [&] {
      for (std::size_t i = 0; i < operations; ++i) plain.setValue(keys[i], i);
    });
    double lockedStores = operationsPerSecond(operations, [&] {
      for (std::size_t i = 0; i < operations; ++i) {
        std::lock_guard guard(mutex);
        locked.setValue(keys[i], i);
      }
    });
    double cacheReads = operationsPerSecond(operations, [&] {
      for (auto key : keys) {
        if (auto value = cache.value(key)) sink = sink + *value;
      }
    });
    double plainReads = operationsPerSecond(operations, [&] {
      for (auto key : keys) {
        if (auto value = plain.value(key)) sink = sink + *value;
      }
    });
    double lockedReads = operationsPerSecond(operations, [&] {
      for (auto key : keys) {
        std::lock_guard guard(mutex);
        if (auto value = locked.value(key)) sink = sink + *value;
      }
    });
    std::printf("round %d  stores: PXRCache %5.1f M/s, plain LRU %5.1f M/s (ratio %.2f),"
                " locked plain LRU %5.1f M/s (ratio %.2f)\n",
                round + 1, cacheStores / 1e6, plainStores / 1e6, cacheStores / plainStores, lockedStores / 1e6,
                cacheStores / lockedStores);
    std::printf("round %d  reads:  PXRCache %5.1f M/s, plain LRU %5.1f M/s (ratio %.2f),"
                " locked plain LRU %5.1f M/s (ratio %.2f)\n",
                round + 1, cacheReads / 1e6, plainReads / 1e6, cacheReads / plainReads, lockedReads / 1e6,
                cacheReads / lockedReads);
  }
  return 0;
}
