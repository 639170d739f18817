#pragma once

#include "foundation/PXRDatedCache.h"

namespace lb {

// A dated cache that obtains a missing or expired value on demand.
template <class Key, class Value, class Hash = std::hash<Key>>
class PXRExpiringCache : public PXRDatedCache<Key, Value, Hash> {
public:
  using PXRDatedCache<Key, Value, Hash>::PXRDatedCache;

  // The current value, or else the block's result stored and returned. A
  // throw reaches the caller and leaves the cache as it was.
  template <class Block>
  Value fill(const Key& key, Block&& block) {
    if (auto current = this->value(key)) return *std::move(current);
    Value made = std::forward<Block>(block)();
    this->setValue(key, made);
    return made;
  }
};

} // namespace lb
