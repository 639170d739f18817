#pragma once

#include "foundation/Result.h"

#include <functional>
#include <optional>
#include <string>

namespace lb {

// Keys that reach the program wherever the focus is, reserved with the
// desktop. Key sequences are Qt's portable text ("Ctrl+Alt+H"). Main thread.
class GlobalKeys {
public:
  // The trigger the desktop shows for the keys, or why it did not take them:
  // English for the one lookup, with "%@" where the keys go.
  using Done = std::function<void(const Result<std::string>&)>;

  virtual ~GlobalKeys() = default;
  // How keys are reserved here, for the log ("X11 key grabs"); none where
  // the desktop offers programs no global keys.
  virtual std::optional<std::string> method() const = 0;
  // Reserves the keys under `id`, replacing what `id` had; `pressed` runs on
  // each press. `done` follows once, at once or when the desktop answers.
  virtual void grab(const std::string& id, const std::string& keySequence, const std::string& description,
                    std::function<void()> pressed, Done done) = 0;
  virtual void release(const std::string& id) = 0;
  // While suspended, the keys reach the focused window as ordinary presses
  // where the desktop allows it, so that a recorder hears them; grabs made
  // or released meanwhile hold once it ends.
  virtual void setSuspended(bool suspended) = 0;
};

} // namespace lb
