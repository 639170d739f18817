#pragma once

#include <utility>

namespace lb {

// Configures a freshly made value in one expression: `block` changes a copy,
// which is returned. For a shared pointer the copy shares the object, so the
// object itself is configured and returned. If `block` throws, the copy is
// discarded and the exception passed on.
template <class T, class Block>
T pxrThen(T value, Block&& block) {
  std::forward<Block>(block)(value);
  return value;
}

} // namespace lb
