#pragma once

#include "foundation/Result.h"

namespace lb {

// Starting the program when the user logs in.
class LoginItems {
public:
  virtual ~LoginItems() = default;
  virtual Result<> setEnabled(bool enabled) = 0;
};

} // namespace lb
