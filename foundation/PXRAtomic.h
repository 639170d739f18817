#pragma once

#include <mutex>
#include <shared_mutex>
#include <source_location>
#include <string>

namespace lb {

// A value shared between threads: any number of concurrent readers, one
// exclusive writer. Every operation is synchronous.
template <class T>
class PXRAtomic {
public:
  explicit PXRAtomic(T value, std::source_location site = std::source_location::current())
      : label_(std::string(site.file_name()) + ":" + std::to_string(site.line()) + " " + site.function_name()),
        value_(std::move(value)) {}

  PXRAtomic(const PXRAtomic&) = delete;
  PXRAtomic& operator=(const PXRAtomic&) = delete;

  // A copy of the value; readers run concurrently with each other.
  T value() const {
    std::shared_lock reader(mutex_);
    return value_;
  }

  void setValue(T newValue) {
    mutate([&](T& stored) { stored = std::move(newValue); });
  }

  // Runs `block` alone with the stored value by reference and returns its
  // result. A change made before the block throws stays made. The block must
  // not use this atomic again: that would wait for itself.
  template <class Block>
  decltype(auto) mutate(Block&& block) {
    std::unique_lock writer(mutex_);
    return std::forward<Block>(block)(value_);
  }

  // Where the atomic was created, for diagnostics.
  const std::string& label() const { return label_; }

private:
  const std::string label_;
  mutable std::shared_mutex mutex_;
  T value_;
};

} // namespace lb
