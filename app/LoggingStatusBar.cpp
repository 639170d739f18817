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
  void setImage(std::shared_ptr<Image> image) override { image_ = std::move(image); }
  std::shared_ptr<Image> image() const override { return image_; }
  // The tool tip says what the picture shows.
  void setToolTip(const std::optional<std::string>& text) override {
    if (toolTip_ == text) return;
    toolTip_ = text;
    PXR_LOG(trayLog(), name_, "shows", text.value_or("nothing"));
  }
  void setBusy(bool busy) override {
    if (busy_ == busy) return;
    busy_ = busy;
    PXR_LOG(trayLog(), name_, busy ? "spins" : "stops spinning");
  }
  void setMenu(std::vector<StatusMenuEntry>) override {}
  void popUpMenu() override { PXR_LOG(trayLog(), name_, "opens its menu"); }
  bool canPopUpMenu() const override { return true; }
  // Nobody can click an item that is only written to the log.
  void setClickHandler(ClickHandler) override {}
  bool showMessage(const std::string& title, const std::string& text) override {
    PXR_LOG(trayLog(), name_, "says", title + ":", text);
    return true;
  }

private:
  std::string name_;
  std::shared_ptr<Image> image_;
  std::optional<std::string> toolTip_;
  bool busy_ = false;
};

} // namespace

std::unique_ptr<StatusItem> LoggingStatusBar::createStatusItem(double, const std::string&) {
  return std::make_unique<LoggingStatusItem>(++created_);
}

} // namespace lb
