#pragma once

#include <memory>
#include <mutex>

namespace lb {

// A lock with value semantics: copies share one mutex.
template <class Mutex>
class PXRBasicLock {
public:
  // Runs `block` while holding the lock; the lock is released even when
  // `block` throws, and the exception reaches the caller unchanged.
  template <class Block>
  decltype(auto) withLock(Block&& block) const {
    std::lock_guard guard(*mutex_);
    return std::forward<Block>(block)();
  }

private:
  std::shared_ptr<Mutex> mutex_ = std::make_shared<Mutex>();
};

// Non-recursive: taking it again on the thread that holds it never returns.
using PXRLock = PXRBasicLock<std::mutex>;

} // namespace lb
