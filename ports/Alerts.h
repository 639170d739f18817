#pragma once

#include <string>
#include <vector>

namespace lb {

struct Alert {
  std::string message;
  std::string informativeText;
  std::vector<std::string> buttons; // first is the default
};

// Modal dialogs and the help pages they lead to. Main thread only.
class Alerts {
public:
  virtual ~Alerts() = default;
  // Shows the alert and waits; the index of the button chosen.
  virtual std::size_t runModal(const Alert& alert) = 0;
  // Opens a page of the shipped help, named without its ending.
  virtual void openHelpPage(const std::string& page) = 0;
};

} // namespace lb
