#pragma once

#include <string>

namespace lb {

// Compares device names as the user's language orders them, ignoring case.
class NameCollator {
public:
  virtual ~NameCollator() = default;
  // Negative, zero or positive as `a` sorts before, with, or after `b`.
  virtual int compare(const std::string& a, const std::string& b) const = 0;
};

} // namespace lb
