#pragma once

#include "core/Texts.h"
#include "core/UserDefaults.h"
#include "foundation/Listeners.h"
#include "foundation/Result.h"
#include "ports/GlobalKeys.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace lb {

// The keyboard shortcuts stored in the user's settings, each under its own
// key as a dictionary {"keySequence": "Ctrl+Alt+H"}, and bound to an action
// while the program runs: reserved with the desktop, bound again at once
// when the stored value changes (from the window or from lanternbud-ctl),
// and refused when another binding has the same keys. Main thread.
class ShortcutBinder {
public:
  struct State {
    std::optional<std::string> keySequence; // as stored
    std::optional<std::string> trigger;     // what the desktop shows, once it took the keys
    std::optional<std::string> problem;     // why the keys do nothing
  };

  ShortcutBinder(UserDefaults& defaults, GlobalKeys& keys);
  ~ShortcutBinder();
  ShortcutBinder(const ShortcutBinder&) = delete;
  ShortcutBinder& operator=(const ShortcutBinder&) = delete;

  // How shortcuts reach the program here; none where they cannot.
  std::optional<std::string> method() const { return keys_.method(); }

  // `name` says whose shortcut it is, to the desktop and in messages.
  void bindShortcut(const std::string& defaultsKey, const std::string& name, std::function<void()> action);
  void breakBinding(const std::string& defaultsKey);
  bool isBound(const std::string& defaultsKey) const { return bindings_.contains(defaultsKey); }
  State state(const std::string& defaultsKey) const;

  // Stores the keys under `defaultsKey`, or clears them; the binding
  // follows. Refuses keys without Ctrl, Alt or Meta (function keys may
  // stand alone), and keys another binding has.
  Result<> setShortcut(const std::string& defaultsKey, const std::optional<std::string>& keySequence);
  // Why these keys cannot be a shortcut; none when they can.
  static std::optional<Wording> refusal(const std::string& keySequence);

  // While the returned registration lives, shortcuts do nothing, and their
  // keys reach the focused window where the desktop allows it: a recorder
  // hears keys that a shortcut has.
  std::unique_ptr<NotificationRegistration> suspend();

  // Told whenever a binding's state may have changed, with its key.
  std::unique_ptr<NotificationRegistration> addChangeListener(std::function<void(const std::string&)> listener) {
    return listeners_.add(std::move(listener));
  }

private:
  class Suspension;
  struct Binding {
    std::string name;
    std::function<void()> action;
    State state;
  };

  void bind(const std::string& defaultsKey);
  std::optional<std::string> storedKeys(const std::string& defaultsKey) const;
  // The other binding with these keys, if any.
  const Binding* holderOf(const std::string& keySequence, const std::string& except) const;

  UserDefaults& defaults_;
  GlobalKeys& keys_;
  std::map<std::string, Binding> bindings_;
  Listeners<std::string> listeners_;
  int suspensions_ = 0;
  std::unique_ptr<NotificationRegistration> storedChanges_;
  // Answers that come after the binder is gone find nothing to tell.
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace lb
