#pragma once

#include "core/UserDefaults.h"

#include <QComboBox>
#include <QWidget>

#include <memory>

namespace lb {

// "Tray icons: Automatic / Light / Dark", kept as "TrayIconColor" (empty,
// "white", "black"); a colour set elsewhere shows as a choice of its own.
// It follows the setting when it changes elsewhere.
class TrayIconsChoice final : public QWidget {
public:
  TrayIconsChoice(UserDefaults& defaults, QWidget* parent);
  ~TrayIconsChoice() override;

private:
  void showSetting();

  UserDefaults& defaults_;
  QComboBox* choice_;
  std::unique_ptr<NotificationRegistration> changes_;
};

} // namespace lb
