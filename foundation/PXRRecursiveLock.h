#pragma once

#include <memory>
#include <mutex>

namespace lb {

// A recursive lock with value semantics: copies share one mutex, and the
// thread that holds it may take it again.
class PXRRecursiveLock {
public:
  template <class Block>
  decltype(auto) withLock(Block&& block) const {
    std::lock_guard guard(*mutex_);
    return std::forward<Block>(block)();
  }

private:
  std::shared_ptr<std::recursive_mutex> mutex_ = std::make_shared<std::recursive_mutex>();
};

} // namespace lb
