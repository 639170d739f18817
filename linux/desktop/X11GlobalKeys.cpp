#include "linux/desktop/X11GlobalKeys.h"

#include "foundation/PXRLog.h"
#include "foundation/Translatable.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeySequence>
#include <QMetaObject>

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

#include <cstdlib>
#include <utility>

namespace lb {

namespace {

// The X keysym of a Qt key, for the keys a shortcut is made of.
std::uint32_t keysymOf(Qt::Key key) {
  if (key >= Qt::Key_A && key <= Qt::Key_Z) return 'a' + (key - Qt::Key_A);
  if (key >= Qt::Key_F1 && key <= Qt::Key_F35) return 0xffbe + (key - Qt::Key_F1);
  if (key >= Qt::Key_Space && key <= Qt::Key_AsciiTilde) return static_cast<std::uint32_t>(key);
  if (key >= Qt::Key_nobreakspace && key <= Qt::Key_ydiaeresis) return static_cast<std::uint32_t>(key);
  static const std::map<Qt::Key, std::uint32_t> special{
      {Qt::Key_Escape, 0xff1b},
      {Qt::Key_Tab, 0xff09},
      {Qt::Key_Backspace, 0xff08},
      {Qt::Key_Return, 0xff0d},
      {Qt::Key_Enter, 0xff8d},
      {Qt::Key_Insert, 0xff63},
      {Qt::Key_Delete, 0xffff},
      {Qt::Key_Pause, 0xff13},
      {Qt::Key_Print, 0xff61},
      {Qt::Key_Home, 0xff50},
      {Qt::Key_End, 0xff57},
      {Qt::Key_Left, 0xff51},
      {Qt::Key_Up, 0xff52},
      {Qt::Key_Right, 0xff53},
      {Qt::Key_Down, 0xff54},
      {Qt::Key_PageUp, 0xff55},
      {Qt::Key_PageDown, 0xff56},
      {Qt::Key_VolumeDown, 0x1008ff11},
      {Qt::Key_VolumeMute, 0x1008ff12},
      {Qt::Key_VolumeUp, 0x1008ff13},
      {Qt::Key_MediaPlay, 0x1008ff14},
      {Qt::Key_MediaStop, 0x1008ff15},
      {Qt::Key_MediaPrevious, 0x1008ff16},
      {Qt::Key_MediaNext, 0x1008ff17},
  };
  auto found = special.find(key);
  return found == special.end() ? 0 : found->second;
}

std::uint16_t modifiersOf(Qt::KeyboardModifiers modifiers) {
  std::uint16_t mask = 0;
  if (modifiers & Qt::ShiftModifier) mask |= XCB_MOD_MASK_SHIFT;
  if (modifiers & Qt::ControlModifier) mask |= XCB_MOD_MASK_CONTROL;
  if (modifiers & Qt::AltModifier) mask |= XCB_MOD_MASK_1;
  if (modifiers & Qt::MetaModifier) mask |= XCB_MOD_MASK_4;
  return mask;
}

// The modifier bit that carries a lock key (Num Lock, Scroll Lock) on this
// keyboard; 0 when none does.
std::uint16_t modifierOf(xcb_connection_t* connection, xcb_key_symbols_t* symbols, std::uint32_t keysym) {
  std::unique_ptr<xcb_keycode_t, decltype(&std::free)> codes(xcb_key_symbols_get_keycode(symbols, keysym), &std::free);
  if (!codes) return 0;
  std::unique_ptr<xcb_get_modifier_mapping_reply_t, decltype(&std::free)> mapping(
      xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr), &std::free);
  if (!mapping) return 0;
  const auto* keycodes = xcb_get_modifier_mapping_keycodes(mapping.get());
  const int perModifier = mapping->keycodes_per_modifier;
  for (int modifier = 0; modifier < 8; ++modifier) {
    for (int i = 0; i < perModifier; ++i) {
      const auto keycode = keycodes[modifier * perModifier + i];
      for (auto* code = codes.get(); keycode != XCB_NO_SYMBOL && *code != XCB_NO_SYMBOL; ++code) {
        if (*code == keycode) return static_cast<std::uint16_t>(1 << modifier);
      }
    }
  }
  return 0;
}

} // namespace

std::unique_ptr<X11GlobalKeys> X11GlobalKeys::make() {
  auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
  auto* x11 = application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
  if (!x11 || !x11->connection()) return nullptr;
  auto* connection = x11->connection();
  const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  return std::unique_ptr<X11GlobalKeys>(new X11GlobalKeys(connection, root));
}

X11GlobalKeys::X11GlobalKeys(xcb_connection_t* connection, std::uint32_t root)
    : connection_(connection), root_(root), symbols_(xcb_key_symbols_alloc(connection)) {
  numLock_ = modifierOf(connection_, symbols_, 0xff7f);
  scrollLock_ = modifierOf(connection_, symbols_, 0xff14);
  QCoreApplication::instance()->installNativeEventFilter(this);
}

X11GlobalKeys::~X11GlobalKeys() {
  if (auto* application = QCoreApplication::instance()) application->removeNativeEventFilter(this);
  for (const auto& [id, grab] : grabs_) ungrab(grab);
  xcb_flush(connection_);
  xcb_key_symbols_free(symbols_);
}

std::vector<std::uint16_t> X11GlobalKeys::lockCombinations() const {
  std::vector<std::uint16_t> all{0};
  for (std::uint16_t lock : {std::uint16_t(XCB_MOD_MASK_LOCK), numLock_, scrollLock_}) {
    if (lock == 0) continue;
    const auto before = all;
    for (auto each : before) all.push_back(each | lock);
  }
  return all;
}

void X11GlobalKeys::grab(const std::string& id, const std::string& keySequence, const std::string&,
                         std::function<void()> pressed, Done done) {
  release(id);
  const auto sequence = QKeySequence::fromString(QString::fromStdString(keySequence), QKeySequence::PortableText);
  const auto keysym = sequence.count() == 1 ? keysymOf(sequence[0].key()) : 0;
  if (keysym == 0) return done(Failure{std::string(translatable("X11 has no key for %@"))});
  std::unique_ptr<xcb_keycode_t, decltype(&std::free)> codes(xcb_key_symbols_get_keycode(symbols_, keysym), &std::free);
  if (!codes || *codes == XCB_NO_SYMBOL)
    return done(Failure{std::string(translatable("this keyboard has no key for %@"))});

  Grab made{*codes, modifiersOf(sequence[0].keyboardModifiers()), std::move(pressed)};
  // Grabbed even while suspended, to learn whether another program has the
  // keys, and let go at once.
  const bool taken = !grabKeys(made);
  if (taken || suspended_) ungrab(made);
  xcb_flush(connection_);
  if (taken) return done(Failure{std::string(translatable("another program holds %@"))});
  grabs_.emplace(id, std::move(made));
  done(sequence.toString(QKeySequence::NativeText).toStdString());
}

bool X11GlobalKeys::grabKeys(const Grab& grab) {
  bool taken = false;
  for (auto locks : lockCombinations()) {
    auto cookie = xcb_grab_key_checked(connection_, 1, root_, grab.modifiers | locks, grab.keycode, XCB_GRAB_MODE_ASYNC,
                                       XCB_GRAB_MODE_ASYNC);
    if (auto* error = xcb_request_check(connection_, cookie)) {
      std::free(error);
      taken = true;
    }
  }
  return !taken;
}

void X11GlobalKeys::setSuspended(bool suspended) {
  if (std::exchange(suspended_, suspended) == suspended) return;
  for (const auto& [id, grab] : grabs_) {
    if (suspended) ungrab(grab);
    else if (!grabKeys(grab)) PXR_LOG_ERROR("Another program took the keys of shortcut " + id + " meanwhile.");
  }
  xcb_flush(connection_);
}

void X11GlobalKeys::release(const std::string& id) {
  auto found = grabs_.find(id);
  if (found == grabs_.end()) return;
  if (!suspended_) ungrab(found->second);
  xcb_flush(connection_);
  grabs_.erase(found);
}

void X11GlobalKeys::ungrab(const Grab& grab) {
  for (auto locks : lockCombinations()) xcb_ungrab_key(connection_, grab.keycode, root_, grab.modifiers | locks);
}

// Presses of grabbed keys come with whatever locks are on; the action runs
// after the event, so that it may change the grabs.
bool X11GlobalKeys::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
  if (eventType != "xcb_generic_event_t") return false;
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & 0x7f) != XCB_KEY_PRESS) return false;
  const auto* press = static_cast<const xcb_key_press_event_t*>(message);
  const std::uint16_t locks = XCB_MOD_MASK_LOCK | numLock_ | scrollLock_;
  const std::uint16_t modifiers = press->state & ~locks & 0xff;
  for (const auto& [id, grab] : grabs_) {
    if (grab.keycode != press->detail || grab.modifiers != modifiers) continue;
    QMetaObject::invokeMethod(
        &presses_,
        [this, id = id] {
          if (auto found = grabs_.find(id); found != grabs_.end()) {
            auto pressed = found->second.pressed;
            pressed();
          }
        },
        Qt::QueuedConnection);
    return true;
  }
  return false;
}

} // namespace lb
