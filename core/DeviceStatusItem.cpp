#include "core/DeviceStatusItem.h"

#include "core/ConnectionControl.h"
#include "core/ConnectionTracker.h"
#include "core/DevicePresentation.h"
#include "core/LogAreas.h"
#include "core/SettingKeys.h"
#include "core/Texts.h"
#include "foundation/BluetoothAddress.h"

#include <cctype>

namespace lb {

void DeviceStatusItem::create() {
  const double length = tunables_(tunable::StatusItemLength, statusBar_.thickness() + 5.0);
  item_ = statusBar_.createStatusItem(length, identity());
  item_->setAccessibilityLabel(device_.deviceName());
  offered_ = offer();
  item_->setMenu(deviceMenu(offered_));
  item_->setClickHandler([this, weak = device_.lifetime()](const StatusItemClick& click) {
    if (const auto alive = weak.lock()) commands_.toggleConnection(click);
  });
  shortcuts_.bindShortcut(
      SettingKeys::shortcutKey(options_.deviceID()), device_.deviceNameOrUnknown(), [this, weak = device_.lifetime()] {
        const auto alive = weak.lock();
        if (!alive) return;
        hotKeyLog()([&] { return "User pressed shortcut for " + device_.deviceNameOrUnknown() + "."; });
        commands_.toggleConnection(std::nullopt);
      });
}

void DeviceStatusItem::remove() {
  item_.reset();
  shortcuts_.breakBinding(SettingKeys::shortcutKey(options_.deviceID()));
}

void DeviceStatusItem::update() {
  if (!item_) {
    PXR_LOG(iconLog(), "button is nil:", device_.description());
    return;
  }
  updateMenu();
  if (showsProgress_) {
    PXR_LOG(iconLog(), "Showing progress instead:", device_.description());
    return;
  }
  const auto connected = tracker_.isConnected();
  if (!connected) {
    PXR_LOG(iconLog(), "isConnected is nil:", device_.description());
    return;
  }
  iconLog()([&] { return "Drawing isConnected " + pxrDescribe(*connected) + ": " + device_.description(); });
  item_->setImage(presentation_.image(*connected));
  item_->setToolTip(presentation_.toolTipString());
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
  const auto connected = tracker_.isConnected(), output = tracker_.isAudioOutput(),
             potential = tracker_.isPotentialAudioOutput();
  PXR_LOG(connectionOnlyModeLog(), "isConnected", connected, "isAudioOutputOrNotPotentialAudioOutput",
          output == true || potential != true, "isAudioOutput", output, "isPotentialAudioOutput", potential);
  // A connected device that could be, and is not, the output would become
  // it; any other connected one would disconnect.
  const bool wouldDisconnect = connected == true && (output != false || potential != true);
  return connection_.refusesDisconnecting(wouldDisconnect, false);
}

DeviceStatusItem::Offer DeviceStatusItem::offer() const {
  const auto connected = tracker_.isConnected();
  if (showsProgress_) return connected == true ? Offer::disconnecting : Offer::connecting;
  if (!connected) return Offer::nothing;
  if (!*connected) return Offer::connect;
  const bool canBeOutput = tracker_.isAudioOutput() == false && tracker_.isPotentialAudioOutput() == true;
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
  const auto weak = device_.lifetime();
  auto status = [this, weak] {
    const auto alive = weak.lock();
    return alive ? presentation_.statusString().value_or(device_.deviceNameOrUnknown()) : std::string();
  };
  auto battery = [this, weak] {
    const auto alive = weak.lock();
    return alive ? presentation_.batteryLevelString() : std::string();
  };
  auto text = [](std::string title) { return [title = std::move(title)] { return title; }; };
  // A choice goes the way a click goes, logged as the user's.
  auto choice = [this, weak](std::string_view title, void (*act)(DeviceCommands&)) -> StatusMenuEntry {
    return {[title] { return localized(title); },
            [this, weak, title, act] {
              const auto alive = weak.lock();
              if (!alive) return;
              connectLog()(
                  [&] { return "User chose " + std::string(title) + " in the menu of " + device_.description(); });
              act(commands_);
            }};
  };
  std::vector<StatusMenuEntry> menu;
  switch (offer) {
  case Offer::nothing: break;
  case Offer::connect: menu.push_back(choice(translatable("Connect"), [](DeviceCommands& d) { d.connect(); })); break;
  case Offer::soundOutput:
    menu.push_back(choice(translatable("Make Sound Output"), [](DeviceCommands& d) { d.makeSoundOutput(); }));
    [[fallthrough]];
  case Offer::disconnect:
    menu.push_back(choice(translatable("Disconnect"), [](DeviceCommands& d) { d.disconnectFromMenu(); }));
    break;
  case Offer::connecting: menu.push_back({text(localized("Connecting…")), {}}); break;
  case Offer::disconnecting: menu.push_back({text(localized("Disconnecting…")), {}}); break;
  }
  if (!menu.empty()) menu.push_back({});
  std::vector<StatusMenuEntry> rest{
      {status, {}}, {battery, {}},
      {},           {text(localized("Settings…")), [this] { windows_.showPreferences(options_.deviceID()); }},
      {},           {text(localized("Quit")), [&windows = windows_] { windows.terminate(); }}};
  menu.insert(menu.end(), rest.begin(), rest.end());
  return menu;
}

void DeviceStatusItem::popUpMenu(const StatusItemClick& click) {
  if (!item_) return;
  if (click.button == StatusItemClick::Button::middle && !item_->canPopUpMenu()) {
    PXR_LOG(trayLog(), "A middle click opens the settings of", device_.description(), "where no menu can be placed");
    windows_.showPreferences(options_.deviceID());
    return;
  }
  item_->popUpMenu();
}

std::string DeviceStatusItem::identity() const {
  const auto address = options_.address();
  if (!address) return "lanternbud-device-" + std::to_string(options_.deviceID());
  std::string hex;
  for (const char c : address->toString()) {
    if (c != ':') hex += char(std::tolower(static_cast<unsigned char>(c)));
  }
  return "lanternbud-" + hex;
}

} // namespace lb
