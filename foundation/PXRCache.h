#pragma once

#include "foundation/PXRDoublyLinkedList.h"
#include "foundation/PXRLock.h"
#include "foundation/Precondition.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace lb {

// A thread-safe cache of at most `countLimit` entries. Storing into a full
// cache drops the entry written longest ago; reading does not count as use.
template <class Key, class Value, class Hash = std::hash<Key>>
class PXRCache {
public:
  explicit PXRCache(int countLimit) : countLimit_(countLimit) {
    PXR_PRECONDITION(countLimit >= 1, "a cache holds at least one entry");
    buckets_.reserve(static_cast<std::size_t>(countLimit));
  }

  PXRCache(const PXRCache&) = delete;
  PXRCache& operator=(const PXRCache&) = delete;

  std::optional<Value> value(const Key& key) const {
    return lock_.withLock([&]() -> std::optional<Value> {
      auto found = buckets_.find(key);
      if (found == buckets_.end()) return std::nullopt;
      return found->second.value;
    });
  }

  // Stores `value` under `key`, making it the most recently written.
  void setValue(const Key& key, Value value) {
    lock_.withLock([&] {
      checkConsistency();
      if (auto found = buckets_.find(key); found != buckets_.end()) {
        queue_.moveToFirst(found->second.node);
        found->second.value = std::move(value);
      } else {
        if (static_cast<int>(buckets_.size()) == countLimit_) {
          buckets_.erase(queue_.removeLast()->payload);
        }
        buckets_.emplace(key, Bucket{std::move(value), queue_.prepend(key)});
      }
      checkConsistency();
    });
  }

  void remove(const Key& key) {
    lock_.withLock([&] {
      checkConsistency();
      if (auto found = buckets_.find(key); found != buckets_.end()) {
        queue_.remove(found->second.node);
        buckets_.erase(found);
      }
      checkConsistency();
    });
  }

  // The stored value, or else the block's result, stored and returned. The
  // block runs outside the lock, so it may use the cache itself; two threads
  // missing at once may both run it, and the later store wins. A throw
  // stores nothing and reaches the caller.
  template <class Block>
  Value fill(const Key& key, Block&& block) {
    if (auto stored = value(key)) return *std::move(stored);
    Value made = std::forward<Block>(block)();
    setValue(key, made);
    return made;
  }

  // All keys, most recently written first.
  std::vector<Key> keys() const {
    return lock_.withLock([&] { return queue_.payloads(); });
  }

  int count() const {
    return lock_.withLock([&] { return static_cast<int>(buckets_.size()); });
  }

  int countLimit() const { return countLimit_; }

  void removeAll() {
    lock_.withLock([&] {
      queue_.removeAll();
      std::unordered_map<Key, Bucket, Hash>().swap(buckets_);
    });
  }

  // With `debug` on, every change checks that the list and the dictionary
  // hold the same keys; a mismatch stops the program.
  void setDebug(bool debug) {
    lock_.withLock([&] {
      debug_ = debug;
      queue_.debug = debug;
    });
  }

private:
  using List = PXRDoublyLinkedList<Key>;

  struct Bucket {
    Value value;
    typename List::Node* node;
  };

  void checkConsistency() const {
    if (!debug_) return;
    std::unordered_set<Key, Hash> listed;
    for (const auto& node : queue_) {
      PXR_PRECONDITION(buckets_.contains(node.payload), "listed key without a bucket");
      PXR_PRECONDITION(listed.insert(node.payload).second, "key listed twice");
    }
    PXR_PRECONDITION(listed.size() == buckets_.size(), "bucket without a listed key");
  }

  bool debug_ = false;
  PXRLock lock_;
  const int countLimit_;
  List queue_;
  std::unordered_map<Key, Bucket, Hash> buckets_;
};

} // namespace lb
