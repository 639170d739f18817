#pragma once

#include "core/ShortcutBinder.h"
#include "foundation/Listeners.h"

#include <QWidget>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

class QKeySequenceEdit;
class QLabel;
class QPushButton;

namespace lb {

// Records a device's global shortcut, shows it and clears it. It says why
// keys are refused or do nothing, shows the desktop's own trigger where the
// desktop has the last word, and where no global shortcuts exist, what to do
// instead.
class ShortcutRecorder final : public QWidget {
  Q_OBJECT
public:
  ShortcutRecorder(ShortcutBinder& binder, QWidget* parent);
  ~ShortcutRecorder() override;

  // The device's shortcut key and ID; none shows nothing and takes nothing.
  void setDevice(const std::optional<std::string>& defaultsKey, std::int64_t deviceID);

protected:
  // While the field has the focus it listens, and the shortcuts rest.
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void record();
  void showState();
  QString noteOn(const ShortcutBinder::State& state, bool possible) const;

  ShortcutBinder& binder_;
  std::optional<std::string> key_;
  std::int64_t deviceID_ = 0;
  QKeySequenceEdit* edit_;
  QPushButton* clear_;
  QLabel* note_;
  std::unique_ptr<NotificationRegistration> changes_;
  std::unique_ptr<NotificationRegistration> suspension_;
};

} // namespace lb
