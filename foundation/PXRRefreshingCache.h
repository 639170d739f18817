#pragma once

#include "foundation/PXRDatedCache.h"
#include "foundation/PXRLog.h"

#include <exception>

namespace lb {

// A dated cache that refreshes an expired value but falls back to it when
// the refresh fails: an old answer beats none.
template <class Key, class Value, class Hash = std::hash<Key>>
class PXRRefreshingCache : public PXRDatedCache<Key, Value, Hash> {
public:
  using PXRDatedCache<Key, Value, Hash>::PXRDatedCache;

  // The value, current or expired.
  std::optional<Value> value(const Key& key) const override {
    auto cached = this->cachedValue(key);
    if (!cached) return std::nullopt;
    return std::move(cached->value);
  }

  // The current value; an expired one is refreshed by the block, and kept
  // (with an error line) if the block throws. For an absent key the block's
  // error reaches the caller.
  template <class Block>
  Value refresh(const Key& key, Block&& block) {
    auto cached = this->cachedValue(key);
    if (cached && cached->isCurrent()) return std::move(cached->value);
    if (!cached) {
      Value made = std::forward<Block>(block)();
      this->setValue(key, made);
      return made;
    }
    try {
      Value made = std::forward<Block>(block)();
      this->setValue(key, made);
      return made;
    } catch (const std::exception& error) {
      PXR_LOG_ERROR("Error refreshing cache:", error.what());
    } catch (...) {
      PXR_LOG_ERROR("Error refreshing cache:", "unknown error");
    }
    return std::move(cached->value);
  }

  // The current value; otherwise the block runs (without emptying the cache)
  // and the value it left, current or expired, is returned.
  template <class Block>
  std::optional<Value> refreshAll(const Key& key, Block&& block) {
    if (auto cached = this->cachedValue(key); cached && cached->isCurrent()) {
      return std::move(cached->value);
    }
    std::forward<Block>(block)();
    return value(key);
  }
};

} // namespace lb
