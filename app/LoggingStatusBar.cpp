#include "app/LoggingStatusBar.h"

#include "core/LogAreas.h"

namespace lb {

namespace {

class LoggingStatusItem final : public StatusItem {
public:
  explicit LoggingStatusItem(int number) : name_("Tray item " + std::to_string(number)) {
    PXR_LOG(trayLog(), name_, "added");
  }
  ~LoggingStatusItem() override { PXR_LOG(trayLog(), name_, "removed"); }

  void setAccessibilityLabel(const std::optional<std::string>& label) override {
    if (label) name_ = "Tray item \"" + *label + "\"";
  }
  void setAppearance(const StatusItemAppearance& appearance) override {
    if (shown_ == appearance) return;
    shown_ = appearance;
    PXR_LOG(trayLog(), name_, "shows", appearance.iconName, appearance.connected ? "connected" : "disconnected");
  }
  void setBusy(bool busy) override {
    if (busy_ == busy) return;
    busy_ = busy;
    PXR_LOG(trayLog(), name_, busy ? "spins" : "stops spinning");
  }
  void popUpMenu() override { PXR_LOG(trayLog(), name_, "opens its menu"); }
  // Nobody can click an item that is only written to the log.
  void setClickHandler(ClickHandler) override {}

private:
  std::string name_;
  std::optional<StatusItemAppearance> shown_;
  bool busy_ = false;
};

} // namespace

std::unique_ptr<StatusItem> LoggingStatusBar::createStatusItem(double) {
  return std::make_unique<LoggingStatusItem>(++created_);
}

} // namespace lb
