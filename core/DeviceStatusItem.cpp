#include "core/DeviceStatusItem.h"

#include "core/DeviceSetting.h"
#include "core/LogAreas.h"
#include "core/Texts.h"

namespace lb {

void DeviceStatusItem::create() {
  const double length = tunables_(tunable::StatusItemLength, statusBar_.thickness() + 5.0);
  item_ = statusBar_.createStatusItem(length);
  item_->setAccessibilityLabel(owner_.deviceName());
  item_->setMenu(deviceMenu());
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
}

void DeviceStatusItem::stopProgress() {
  showsProgress_ = false;
  if (item_) item_->setBusy(false);
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

std::vector<StatusMenuEntry> DeviceStatusItem::deviceMenu() {
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
  return {{status, {}}, {battery, {}},
          {},           {text(localized("Settings…")), [this] { windows_.showPreferences(owner_.deviceID()); }},
          {},           {text(localized("Quit")), [&windows = windows_] { windows.terminate(); }}};
}

void DeviceStatusItem::popUpMenu() {
  if (item_) item_->popUpMenu();
}

} // namespace lb
