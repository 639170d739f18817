#include "ui/TrayIconsChoice.h"

#include "core/Texts.h"
#include "ui/UiText.h"

#include <QHBoxLayout>
#include <QLabel>

namespace lb {

namespace {

constexpr const char* key = "TrayIconColor";

} // namespace

TrayIconsChoice::TrayIconsChoice(UserDefaults& defaults, QWidget* parent)
    : QWidget(parent), defaults_(defaults), choice_(new QComboBox(this)) {
  choice_->setObjectName("trayIcons");
  choice_->setAccessibleName(uiText("Tray icons"));
  auto* label = new QLabel(uiText("&Tray icons:"), this);
  label->setBuddy(choice_);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(label);
  row->addWidget(choice_);
  setFocusProxy(choice_);
  showSetting();
  connect(choice_, &QComboBox::activated, this, [this] {
    const auto colour = choice_->currentData().toString().toStdString();
    if (colour.empty()) {
      defaults_.removeValue(key);
    } else {
      defaults_.setValue(key, colour);
    }
  });
  changes_ = defaults_.addChangeListener([this](const std::string& changed) {
    if (changed == key) showSetting();
  });
}

TrayIconsChoice::~TrayIconsChoice() = default;

void TrayIconsChoice::showSetting() {
  const auto stored = defaults_.stringValue(key, "");
  choice_->clear();
  choice_->addItem(uiText("Automatic"), QString());
  choice_->addItem(uiText("Light"), "white");
  choice_->addItem(uiText("Dark"), "black");
  int shown = choice_->findData(QString::fromStdString(stored));
  if (shown < 0) {
    choice_->addItem(QString::fromStdString(formatted(localized("Custom (%@)"), stored)),
                     QString::fromStdString(stored));
    shown = choice_->count() - 1;
  }
  choice_->setCurrentIndex(shown);
}

} // namespace lb
