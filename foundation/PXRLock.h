#pragma once

#include <memory>
#include <mutex>

namespace lb {

// A non-recursive lock with value semantics: copies share one mutex.
class PXRLock {
public:
  // Runs `block` while holding the lock; the lock is released even when
  // `block` throws, and the exception reaches the caller unchanged.
  template <class Block>
  decltype(auto) withLock(Block&& block) const {
    std::lock_guard guard(*mutex_);
    return std::forward<Block>(block)();
  }

private:
  std::shared_ptr<std::mutex> mutex_ = std::make_shared<std::mutex>();
};

} // namespace lb
