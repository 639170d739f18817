#pragma once

#include "foundation/Clock.h"
#include "foundation/PXRCache.h"

#include <cmath>
#include <optional>

namespace lb {

// A cached value with whether it is still current.
template <class Value>
struct CachedValue {
  enum class State { current, expired };
  State state;
  Value value;

  bool isCurrent() const { return state == State::current; }
};

// A count-limited cache whose entries expire `stalenessInterval` after they
// were stored. Expiry removes nothing; it only changes the answer.
template <class Key, class Value, class Hash = std::hash<Key>>
class PXRDatedCache {
public:
  PXRDatedCache(const Clock& clock, int countLimit, Seconds stalenessInterval)
      : clock_(clock), cache_(countLimit), stalenessInterval_(stalenessInterval) {}
  virtual ~PXRDatedCache() = default;

  PXRDatedCache(const PXRDatedCache&) = delete;
  PXRDatedCache& operator=(const PXRDatedCache&) = delete;

  // The entry and whether it is current. Age counts in both directions, so an
  // entry dated in the future (the clock was set back) ages like a past one.
  std::optional<CachedValue<Value>> cachedValue(const Key& key) const {
    auto dated = cache_.value(key);
    if (!dated) return std::nullopt;
    auto age = std::chrono::abs(timeBetween(dated->date, clock_.now()));
    auto state = age < stalenessInterval_ ? CachedValue<Value>::State::current : CachedValue<Value>::State::expired;
    return CachedValue<Value>{state, std::move(dated->value)};
  }

  // The value while it is current.
  virtual std::optional<Value> value(const Key& key) const {
    auto cached = cachedValue(key);
    if (!cached || !cached->isCurrent()) return std::nullopt;
    return std::move(cached->value);
  }

  // Stores `value` dated now.
  void setValue(const Key& key, Value value) { cache_.setValue(key, DatedValue{clock_.now(), std::move(value)}); }

  void remove(const Key& key) { cache_.remove(key); }
  void removeAll() { cache_.removeAll(); }

  Seconds stalenessInterval() const { return stalenessInterval_; }

private:
  struct DatedValue {
    Date date;
    Value value;
  };

  const Clock& clock_;
  PXRCache<Key, DatedValue, Hash> cache_;
  const Seconds stalenessInterval_;
};

} // namespace lb
