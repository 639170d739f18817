#pragma once

#include "ports/GlobalKeys.h"

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <map>
#include <memory>

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

namespace lb {

// Global keys as passive grabs on the X11 root window, on Qt's own X
// connection: each key is grabbed with every combination of the lock keys
// (Caps Lock, Num Lock, Scroll Lock), so that it works whatever locks are
// on, and its presses are read from Qt's event stream.
class X11GlobalKeys final : public GlobalKeys, public QAbstractNativeEventFilter {
public:
  // None unless the application runs on X11.
  static std::unique_ptr<X11GlobalKeys> make();
  ~X11GlobalKeys() override;

  std::optional<std::string> method() const override { return "X11 key grabs"; }
  // A key another program holds is said, and nothing of it stays grabbed.
  void grab(const std::string& id, const std::string& keySequence, const std::string& description,
            std::function<void()> pressed, Done done) override;
  void release(const std::string& id) override;
  // Suspended keys are ungrabbed, and grabbed again when it ends.
  void setSuspended(bool suspended) override;

  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
  struct Grab {
    std::uint8_t keycode;
    std::uint16_t modifiers;
    std::function<void()> pressed;
  };

  X11GlobalKeys(xcb_connection_t* connection, std::uint32_t root);
  // Every combination of the lock modifiers this keyboard has.
  std::vector<std::uint16_t> lockCombinations() const;
  // Whether another program holds the keys: then none of them is grabbed.
  bool grabKeys(const Grab& grab);
  void ungrab(const Grab& grab);

  xcb_connection_t* connection_;
  std::uint32_t root_;
  xcb_key_symbols_t* symbols_;
  std::uint16_t numLock_ = 0;
  std::uint16_t scrollLock_ = 0;
  std::map<std::string, Grab> grabs_;
  bool suspended_ = false;
  QObject presses_; // queued presses go with it
};

} // namespace lb
