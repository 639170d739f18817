#include "ui/DeviceListPane.h"

#include "core/DeviceSettingManager.h"
#include "core/LogAreas.h"
#include "core/SettingKeys.h"
#include "ui/AddByAddressDialog.h"
#include "ui/AdvancedSheet.h"
#include "ui/BatteryHistoryPlot.h"
#include "ui/DeviceChooser.h"
#include "ui/IconPicker.h"
#include "ui/ShortcutRecorder.h"
#include "ui/TrayIconsChoice.h"
#include "ui/TrayImage.h"
#include "ui/UiText.h"

#include <QCheckBox>
#include <QEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace lb {

// A check box bound to one of the device's options.
struct DeviceListPane::Switch {
  QCheckBox* box;
  bool (DeviceSetting::*get)() const;
  void (DeviceSetting::*set)(bool);
};

namespace {

// A row's device, to know the list's order from the registry's, and the
// name of its picture, to draw it only when it changed.
constexpr int deviceIDRole = Qt::UserRole;
constexpr int iconRole = Qt::UserRole + 1;

QString rawName(MenuBarIconOption icon) {
  const auto name = rawValue(icon);
  return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

// The list, framed in the highlight colour while it has the focus: many
// styles draw no focus on a list at all.
class DeviceList final : public QListWidget {
public:
  using QListWidget::QListWidget;

protected:
  void paintEvent(QPaintEvent* event) override {
    QListWidget::paintEvent(event);
    if (!hasFocus()) return;
    QPainter painter(viewport());
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(QRectF(viewport()->rect()).adjusted(1, 1, -1, -1));
  }
  void focusInEvent(QFocusEvent* event) override {
    QListWidget::focusInEvent(event);
    viewport()->update();
  }
  void focusOutEvent(QFocusEvent* event) override {
    QListWidget::focusOutEvent(event);
    viewport()->update();
  }
};

QPushButton* button(const QString& title, const QString& accessibleName, QWidget* parent) {
  auto* made = new QPushButton(title, parent);
  made->setAccessibleName(accessibleName);
  return made;
}

} // namespace

DeviceListPane::DeviceListPane(DeviceSettingManager& registry, Services& services, QWidget* parent)
    : QWidget(parent), registry_(registry), services_(services), list_(new DeviceList(this)),
      deviceLabel_(new QLabel(this)), iconButton_(new QToolButton(this)),
      shortcut_(new ShortcutRecorder(services.shortcuts, this)), picker_(new IconPicker(services.images, this)),
      advancedButton_(button(uiText("Ad&vanced…"), uiText("Scripts of the device"), this)),
      removeButton_(button("−", uiText("Remove the device"), this)), batteryPlot_(new BatteryHistoryPlot(this)),
      launchAtLogin_(new QCheckBox(uiText("Start Lanternbud at &login"), this)) {
  list_->setObjectName("devices");
  list_->setAccessibleName(uiText("Devices"));
  list_->setIconSize(QSize(24, 24));
  list_->setMinimumWidth(200);
  // A long state line wraps rather than scrolling sideways.
  list_->setWordWrap(true);
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  connect(list_, &QListWidget::currentRowChanged, this, [this] { showSelected(); });

  auto* addButton = button("+", uiText("Add a paired device"), this);
  addButton->setObjectName("addDevice");
  addButton->setToolTip(uiText("Add a device that is paired with this computer"));
  connect(addButton, &QPushButton::clicked, this, &DeviceListPane::addNewDevice);
  removeButton_->setObjectName("remove");
  removeButton_->setToolTip(uiText("Remove the selected device from Lanternbud"));
  connect(removeButton_, &QPushButton::clicked, this, &DeviceListPane::removeSelectedDevice);
  auto* byAddress = button(uiText("Add by &Address…"), uiText("Add a device by its address"), this);
  byAddress->setObjectName("addByAddress");
  connect(byAddress, &QPushButton::clicked, this, &DeviceListPane::addNewDeviceManually);

  deviceLabel_->setObjectName("deviceLabel");
  deviceLabel_->setWordWrap(true);
  deviceLabel_->setAccessibleName(uiText("Device name"));
  auto font = deviceLabel_->font();
  font.setBold(true);
  deviceLabel_->setFont(font);
  iconButton_->setObjectName("icon");
  iconButton_->setAccessibleName(uiText("Icon in the tray"));
  iconButton_->setToolTip(uiText("Choose the device's picture in the tray"));
  iconButton_->setIconSize(QSize(32, 32));
  connect(iconButton_, &QToolButton::clicked, this, [this] {
    if (auto setting = selectedDeviceSetting()) picker_->popUp(iconButton_, setting->icon());
  });
  connect(picker_, &IconPicker::chosen, this, [this](MenuBarIconOption option) {
    if (auto setting = selectedDeviceSetting()) {
      setting->setIcon(option);
      emit saved();
    }
  });

  auto makeSwitch = [this](const char* name, QString title, bool (DeviceSetting::*get)() const,
                           void (DeviceSetting::*set)(bool)) {
    auto* box = new QCheckBox(title, this);
    box->setObjectName(name);
    box->setAccessibleName(title.remove('&'));
    connect(box, &QCheckBox::clicked, this, [this, set](bool on) {
      if (auto setting = selectedDeviceSetting()) {
        ((*setting).*set)(on);
        emit saved();
      }
    });
    switches_.push_back({box, get, set});
  };
  makeSwitch("isActive", uiText("Sho&w in the tray"), &DeviceSetting::isActive, &DeviceSetting::setActive);
  makeSwitch("connectOnlyMode", uiText("&Connect only: a click never disconnects"), &DeviceSetting::connectionOnlyMode,
             &DeviceSetting::setConnectionOnlyMode);
  makeSwitch("keepDefaultAudioInput", uiText("&Keep the sound input when connecting"),
             &DeviceSetting::keepDefaultAudioInput, &DeviceSetting::setKeepDefaultAudioInput);
  makeSwitch("showBatteryLevel", uiText("Show the &battery level"), &DeviceSetting::showBatteryLevel,
             &DeviceSetting::setShowBatteryLevel);
  makeSwitch("warnLowBattery", uiText("Wa&rn when the battery is low"), &DeviceSetting::warnsOfLowBattery,
             &DeviceSetting::setWarnsOfLowBattery);
  advancedButton_->setObjectName("advanced");
  connect(advancedButton_, &QPushButton::clicked, this, &DeviceListPane::openAdvancedSheet);

  launchAtLogin_->setObjectName(settingKey::launchAtLogin);
  launchAtLogin_->setAccessibleName(uiText("Start Lanternbud at login"));
  launchAtLogin_->setChecked(services_.defaults.boolValue(settingKey::launchAtLogin, false));
  connect(launchAtLogin_, &QCheckBox::clicked, this, [this](bool on) {
    PXR_LOG(loginLog(), "Launch at login checkbox set to :", on ? "true" : "false");
    services_.defaults.setValue(settingKey::launchAtLogin, on);
    emit saved();
  });
  // Set elsewhere too (lanternbud-ctl config set launchAtLogin).
  settingChanges_ = services_.defaults.addChangeListener([this](const std::string& key) {
    if (key == settingKey::launchAtLogin) {
      launchAtLogin_->setChecked(services_.defaults.boolValue(settingKey::launchAtLogin, false));
    }
  });

  auto* detail = new QFormLayout;
  detail->addRow(deviceLabel_);
  detail->addRow(uiText("&Icon:"), iconButton_);
  // The recorder takes no focus itself: its field does.
  auto* shortcutLabel = new QLabel(uiText("&Shortcut:"), this);
  shortcutLabel->setBuddy(shortcut_->focusProxy());
  detail->addRow(shortcutLabel, shortcut_);
  for (const auto& each : switches_) detail->addRow(each.box);
  auto* advancedRow = new QHBoxLayout;
  advancedRow->addWidget(advancedButton_);
  advancedRow->addStretch();
  detail->addRow(advancedRow);
  auto* batteryTitle = new QLabel(uiText("Battery"), this);
  batteryTitle->setFont(deviceLabel_->font());
  detail->addRow(batteryTitle);
  detail->addRow(batteryPlot_);

  auto* listButtons = new QHBoxLayout;
  listButtons->addWidget(addButton);
  listButtons->addWidget(removeButton_);
  listButtons->addWidget(byAddress);
  listButtons->addStretch();
  auto* left = new QVBoxLayout;
  left->addWidget(list_);
  left->addLayout(listButtons);
  auto* columns = new QHBoxLayout;
  columns->addLayout(left, 1);
  columns->addLayout(detail, 1);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(columns);
  auto* bottom = new QHBoxLayout;
  bottom->addWidget(launchAtLogin_);
  bottom->addStretch();
  auto* trayIcons = new TrayIconsChoice(services_.defaults, this);
  bottom->addWidget(trayIcons);
  layout->addLayout(bottom);

  // Tab follows the layout: the list and its buttons, then the details top
  // to bottom, then the options below.
  QWidget* order[] = {list_, addButton, removeButton_, byAddress, iconButton_, shortcut_};
  for (std::size_t i = 1; i < std::size(order); ++i) setTabOrder(order[i - 1], order[i]);
  QWidget* previous = shortcut_;
  for (const auto& each : switches_) setTabOrder(std::exchange(previous, each.box), each.box);
  setTabOrder(previous, advancedButton_);
  setTabOrder(advancedButton_, launchAtLogin_);
  setTabOrder(launchAtLogin_, trayIcons);

  changes_ = registry_.addChangeListener([this](const DeviceSetting* changed) { deviceChanged(changed); });
  reload();
  selectRow(0);
}

DeviceListPane::~DeviceListPane() = default;

std::shared_ptr<DeviceSetting> DeviceListPane::selectedDeviceSetting() const {
  const auto& devices = registry_.deviceSettingList();
  const int row = list_->currentRow();
  return row >= 0 && static_cast<std::size_t>(row) < devices.size() ? devices[static_cast<std::size_t>(row)] : nullptr;
}

void DeviceListPane::select(std::optional<std::int64_t> deviceID) {
  const auto& devices = registry_.deviceSettingList();
  for (std::size_t row = 0; deviceID && row < devices.size(); ++row) {
    if (devices[row]->deviceID() == *deviceID) return selectRow(static_cast<int>(row));
  }
  selectRow(std::max(list_->currentRow(), 0));
}

void DeviceListPane::selectRow(int row) {
  if (row >= list_->count()) row = list_->count() - 1;
  list_->setCurrentRow(row);
  showSelected();
}

void DeviceListPane::reload() {
  const auto selected = selectedDeviceSetting();
  list_->blockSignals(true);
  list_->clear();
  int selectedRow = 0;
  for (const auto& setting : registry_.deviceSettingList()) {
    if (setting == selected) selectedRow = list_->count();
    showRow(*new QListWidgetItem(list_), *setting);
  }
  list_->setCurrentRow(list_->count() ? selectedRow : -1);
  list_->blockSignals(false);
  showSelected();
  // A device removed meanwhile (by a script) takes its open scripts along:
  // they would be written for an ID that is gone.
  const auto& devices = registry_.deviceSettingList();
  for (auto* sheet : findChildren<AdvancedSheet*>()) {
    const bool listed = std::any_of(devices.begin(), devices.end(),
                                    [&](const auto& setting) { return setting.get() == &sheet->deviceSetting(); });
    if (!listed) sheet->reject();
  }
}

// The icon timer and every state change tell this too: while the same
// devices stand in the same order, only what shows is compared and redrawn,
// so that the selection, the focus and a shortcut being recorded stay.
void DeviceListPane::deviceChanged(const DeviceSetting* changed) {
  const auto& devices = registry_.deviceSettingList();
  if (static_cast<std::size_t>(list_->count()) != devices.size()) return reload();
  for (std::size_t row = 0; row < devices.size(); ++row) {
    if (list_->item(static_cast<int>(row))->data(deviceIDRole) != QVariant::fromValue(devices[row]->deviceID())) {
      return reload(); // a new order
    }
  }
  for (std::size_t row = 0; row < devices.size(); ++row) {
    if (!changed || devices[row].get() == changed) showRow(*list_->item(static_cast<int>(row)), *devices[row]);
  }
  showSelected();
}

// A picture is drawn again only when the device's choice changed.
void DeviceListPane::showRow(QListWidgetItem& item, DeviceSetting& setting) {
  item.setData(deviceIDRole, QVariant::fromValue(setting.deviceID()));
  item.setText(QString::fromStdString(setting.displayName() + "\n" + setting.summaryString()));
  const auto icon = rawName(setting.icon());
  if (item.data(iconRole) == icon) return;
  item.setData(iconRole, icon);
  item.setIcon(pictureOf(setting));
}

QIcon DeviceListPane::pictureOf(const DeviceSetting& setting) const {
  return TrayImage::iconOf(services_.images.named(std::string(rawValue(setting.icon()))),
                           palette().color(QPalette::WindowText));
}

void DeviceListPane::showSelected() {
  const auto setting = selectedDeviceSetting();
  deviceLabel_->setText(setting ? QString::fromStdString(setting->displayName())
                                : uiText("Click + to add a paired device."));
  const auto icon = setting ? rawName(setting->icon()) : QString();
  if (iconButton_->property("icon") != icon) {
    iconButton_->setProperty("icon", icon);
    iconButton_->setIcon(setting ? pictureOf(*setting) : QIcon());
  }
  for (const auto& each : switches_) {
    each.box->setChecked(setting && ((*setting).*each.get)());
    each.box->setEnabled(setting != nullptr);
  }
  shortcut_->setDevice(setting ? std::optional(setting->shortCutKey()) : std::nullopt,
                       setting ? setting->deviceID() : 0);
  for (QWidget* widget : std::initializer_list<QWidget*>{iconButton_, advancedButton_, removeButton_}) {
    widget->setEnabled(setting != nullptr);
  }
  batteryPlot_->setHistory(setting ? setting->batteryHistory() : nullptr, services_.loop.now(),
                           setting ? setting->timeLeftText() : std::nullopt);
}

void DeviceListPane::openAdvancedSheet() {
  auto setting = selectedDeviceSetting();
  if (!setting) return;
  auto* sheet = new AdvancedSheet(setting, services_, this);
  sheet->setAttribute(Qt::WA_DeleteOnClose);
  connect(sheet, &AdvancedSheet::scriptsChanged, this, &DeviceListPane::saved);
  sheet->open();
}

void DeviceListPane::addNewDevice() {
  if (chooser_ && chooser_->isVisible()) {
    chooser_->raise();
    chooser_->activateWindow();
    return;
  }
  chooser_ = new DeviceChooser(registry_, services_, this);
  chooser_->setAttribute(Qt::WA_DeleteOnClose);
  connect(chooser_, &DeviceChooser::added, this, &DeviceListPane::added);
  connect(chooser_, &DeviceChooser::addByAddress, this, &DeviceListPane::addNewDeviceManually);
  chooser_->open();
}

void DeviceListPane::addNewDeviceManually() {
  auto* dialog = new AddByAddressDialog(registry_, services_, this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &AddByAddressDialog::added, this, &DeviceListPane::added);
  dialog->open();
}

void DeviceListPane::added(std::int64_t deviceID) {
  reload();
  select(deviceID);
  emit saved();
}

// Asks first, naming what goes with the device; then the neighbouring row
// is selected.
void DeviceListPane::removeSelectedDevice() {
  const auto setting = selectedDeviceSetting();
  if (!setting) return;
  const auto keys = services_.shortcuts.state(setting->shortCutKey()).keySequence;
  auto* question = new QMessageBox(
      QMessageBox::Question, uiText("Remove Device"),
      QString::fromStdString(formatted(localized("Remove “%@” from Lanternbud?"), setting->displayName())),
      QMessageBox::Cancel, this);
  question->setInformativeText(
      keys ? QString::fromStdString(formatted(localized("Its tray icon, its connect and disconnect scripts and its "
                                                        "shortcut %@ go with it. The device stays paired with this "
                                                        "computer."),
                                              *keys))
           : uiText("Its tray icon and its connect and disconnect scripts go with it. The device stays paired with "
                    "this computer."));
  auto* remove = question->addButton(uiText("Remove"), QMessageBox::DestructiveRole);
  remove->setObjectName("confirmRemove");
  question->setDefaultButton(QMessageBox::Cancel);
  question->setAttribute(Qt::WA_DeleteOnClose);
  connect(remove, &QPushButton::clicked, this, [this, weak = std::weak_ptr(setting)] {
    const auto& devices = registry_.deviceSettingList();
    const auto found = std::find(devices.begin(), devices.end(), weak.lock());
    if (found == devices.end()) return; // removed meanwhile
    const int row = static_cast<int>(found - devices.begin());
    registry_.remove((*found)->deviceID());
    selectRow(row); // the next one, or the last
    emit saved();
    offerChooserWhenEmpty();
  });
  question->open();
}

void DeviceListPane::offerChooserWhenEmpty() {
  if (registry_.deviceSettingList().empty()) addNewDevice();
}

void DeviceListPane::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::PaletteChange) return;
  iconButton_->setProperty("icon", QVariant());
  reload(); // new rows, new pictures
}

} // namespace lb
