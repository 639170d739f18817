#pragma once

namespace lb {

// Starting the program when the user logs in.
class LoginItems {
public:
  virtual ~LoginItems() = default;
  // Whether the system accepted the change.
  virtual bool setEnabled(bool enabled) = 0;
};

} // namespace lb
