#include "core/DeviceStatusItem.h"

#include "core/DeviceSetting.h"
#include "core/LogAreas.h"
#include "core/Texts.h"
#include "foundation/BluetoothAddress.h"

#include <cctype>

namespace lb {

void DeviceStatusItem::create() {
  const double length = tunables_(tunable::StatusItemLength, statusBar_.thickness() + 5.0);
  item_ = statusBar_.createStatusItem(length, identity());
  item_->setAccessibilityLabel(owner_.deviceName());
  offered_ = offer();
  item_->setMenu(deviceMenu(offered_));
  item_->setClickHandler([weak = owner_.weak_from_this()](const StatusItemClick& click) {
    if (auto self = weak.lock()) self->toggleConnection(click);
  });
  shortcuts_.bindShortcut(owner_.shortCutKey(), owner_.deviceNameOrUnknown(), [weak = owner_.weak_from_this()] {
    auto self = weak.lock();
    if (!self) return;
    hotKeyLog()([&] { return "User pressed shortcut for " + self->deviceNameOrUnknown() + "."; });
    self->toggleConnection();
  });
}

void DeviceStatusItem::remove() {
  item_.reset();
  shortcuts_.breakBinding(owner_.shortCutKey());
}

void DeviceStatusItem::update() {
  if (!item_) {
    PXR_LOG(iconLog(), "button is nil:", owner_.description());
    return;
  }
  updateMenu();
  if (showsProgress_) {
    PXR_LOG(iconLog(), "Showing progress instead:", owner_.description());
    return;
  }
  const auto connected = owner_.isConnected();
  if (!connected) {
    PXR_LOG(iconLog(), "isConnected is nil:", owner_.description());
    return;
  }
  iconLog()([&] { return "Drawing isConnected " + pxrDescribe(*connected) + ": " + owner_.description(); });
  item_->setImage(owner_.presentation().image(*connected));
  item_->setToolTip(owner_.toolTipString());
}

void DeviceStatusItem::startProgress() {
  showsProgress_ = true;
  if (item_) item_->setBusy(true);
  updateMenu();
}

void DeviceStatusItem::stopProgress() {
  showsProgress_ = false;
  if (item_) item_->setBusy(false);
  updateMenu();
}

bool DeviceStatusItem::shouldShowMenu(const StatusItemClick& click) const {
  // While spinning, the spinner takes the click and shows the menu.
  if (click.control || click.button != StatusItemClick::Button::left || showsProgress_) return true;
  if (!owner_.connectionOnlyMode()) return false;
  const auto connected = owner_.isConnected(), output = owner_.isAudioOutput(),
             potential = owner_.isPotentialAudioOutput();
  PXR_LOG(connectionOnlyModeLog(), "isConnected", connected, "isAudioOutputOrNotPotentialAudioOutput",
          output == true || potential != true, "isAudioOutput", output, "isPotentialAudioOutput", potential);
  if (connected != true) return false;
  if (output != false) return true;
  return potential != true;
}

DeviceStatusItem::Offer DeviceStatusItem::offer() const {
  const auto connected = owner_.isConnected();
  if (showsProgress_) return connected == true ? Offer::disconnecting : Offer::connecting;
  if (!connected) return Offer::nothing;
  if (!*connected) return Offer::connect;
  const bool canBeOutput = owner_.isAudioOutput() == false && owner_.isPotentialAudioOutput() == true;
  return canBeOutput && tunables_(tunable::EnableAudioOutput) ? Offer::soundOutput : Offer::disconnect;
}

void DeviceStatusItem::updateMenu() {
  if (!item_) return;
  const auto now = offer();
  if (now == offered_) return;
  offered_ = now;
  item_->setMenu(deviceMenu(offered_));
}

std::vector<StatusMenuEntry> DeviceStatusItem::deviceMenu(Offer offer) {
  // The texts are read as the menu opens, by then perhaps after the device.
  auto weak = owner_.weak_from_this();
  auto status = [weak] {
    auto self = weak.lock();
    return self ? self->statusString().value_or(self->deviceNameOrUnknown()) : std::string();
  };
  auto battery = [weak] {
    auto self = weak.lock();
    return self ? self->batteryLevelString() : std::string();
  };
  auto text = [](std::string title) { return [title = std::move(title)] { return title; }; };
  // A choice goes the way a click goes, logged as the user's.
  auto choice = [weak](std::string_view title, void (*act)(DeviceSetting&)) -> StatusMenuEntry {
    return {[title] { return localized(title); },
            [weak, title, act] {
              auto self = weak.lock();
              if (!self) return;
              connectLog()(
                  [&] { return "User chose " + std::string(title) + " in the menu of " + self->description(); });
              act(*self);
            }};
  };
  std::vector<StatusMenuEntry> menu;
  switch (offer) {
  case Offer::nothing: break;
  case Offer::connect: menu.push_back(choice(translatable("Connect"), [](DeviceSetting& d) { d.connect(); })); break;
  case Offer::soundOutput:
    menu.push_back(choice(translatable("Make Sound Output"), [](DeviceSetting& d) { d.makeSoundOutput(); }));
    [[fallthrough]];
  case Offer::disconnect:
    menu.push_back(choice(translatable("Disconnect"), [](DeviceSetting& d) { d.disconnectFromMenu(); }));
    break;
  case Offer::connecting: menu.push_back({text(localized("Connecting…")), {}}); break;
  case Offer::disconnecting: menu.push_back({text(localized("Disconnecting…")), {}}); break;
  }
  if (!menu.empty()) menu.push_back({});
  std::vector<StatusMenuEntry> rest{
      {status, {}}, {battery, {}},
      {},           {text(localized("Settings…")), [this] { windows_.showPreferences(owner_.deviceID()); }},
      {},           {text(localized("Quit")), [&windows = windows_] { windows.terminate(); }}};
  menu.insert(menu.end(), rest.begin(), rest.end());
  return menu;
}

void DeviceStatusItem::popUpMenu(const StatusItemClick& click) {
  if (!item_) return;
  if (click.button == StatusItemClick::Button::middle && !item_->canPopUpMenu()) {
    PXR_LOG(trayLog(), "A middle click opens the settings of", owner_.description(), "where no menu can be placed");
    windows_.showPreferences(owner_.deviceID());
    return;
  }
  item_->popUpMenu();
}

std::string DeviceStatusItem::identity() const {
  const auto address = BluetoothAddress::parse(owner_.storedAddress().value_or(""));
  if (!address) return "lanternbud-device-" + std::to_string(owner_.deviceID());
  std::string hex;
  for (const char c : address->toString()) {
    if (c != ':') hex += char(std::tolower(static_cast<unsigned char>(c)));
  }
  return "lanternbud-" + hex;
}

} // namespace lb
