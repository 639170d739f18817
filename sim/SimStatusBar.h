#pragma once

#include "ports/StatusBar.h"

#include <functional>
#include <vector>

namespace lb {

// A tray that records its items instead of drawing them.
class SimStatusBar final : public StatusBar {
public:
  struct Item final : StatusItem {
    SimStatusBar& bar;
    double length;
    std::optional<std::string> label;
    std::string identity;
    std::shared_ptr<Image> shownImage;
    std::optional<std::string> toolTip;
    int redraws = 0;
    bool busy = false;
    std::vector<StatusMenuEntry> menu;
    int menuPopUps = 0;
    std::vector<std::string> messages;

    Item(SimStatusBar& owner, double itemLength, std::string name)
        : bar(owner), length(itemLength), identity(std::move(name)) {}
    ~Item() override {
      std::erase(bar.items_, this);
      if (bar.onRemove) bar.onRemove(*this);
    }
    void setAccessibilityLabel(const std::optional<std::string>& text) override { label = text; }
    void setImage(std::shared_ptr<Image> image) override {
      shownImage = std::move(image);
      ++redraws;
    }
    std::shared_ptr<Image> image() const override { return shownImage; }
    void setToolTip(const std::optional<std::string>& text) override { toolTip = text; }
    void setBusy(bool value) override { busy = value; }
    void setMenu(std::vector<StatusMenuEntry> entries) override { menu = std::move(entries); }
    void popUpMenu() override { ++menuPopUps; }
    bool canPopUpMenu() const override { return bar.canPopUpMenus; }
    void setClickHandler(ClickHandler handler) override { onClick = std::move(handler); }
    bool showMessage(const std::string& title, const std::string& text) override {
      messages.push_back(title + ": " + text);
      return true;
    }

    // The menu's titles as it opens, a separator as "-".
    std::vector<std::string> openMenu() const {
      std::vector<std::string> titles;
      for (const auto& entry : menu) titles.push_back(entry.title ? entry.title() : "-");
      return titles;
    }
    // Chooses the menu's entry with that title; its action may replace the
    // menu.
    void choose(const std::string& title) const {
      for (const auto& entry : menu) {
        if (entry.title && entry.action && entry.title() == title) return std::function(entry.action)();
      }
    }

    // Plays a click on the item, as the user makes it.
    void click(StatusItemClick::Button button = StatusItemClick::Button::left, bool control = false) {
      if (onClick) onClick({button, control});
    }
    ClickHandler onClick;
  };

  double thickness() const override { return 22.0; }
  PanelSignals panelSignals() const override { return panel; }
  void watchPanel(std::function<void()> changed) override { panelChanged = std::move(changed); }
  void setPaint(const TrayPaint& value) override { paint = value; }
  std::unique_ptr<StatusItem> createStatusItem(double length, const std::string& identity) override {
    auto item = std::make_unique<Item>(*this, length, identity);
    items_.push_back(item.get());
    return item;
  }

  // The items now in the tray, oldest first.
  const std::vector<Item*>& items() const { return items_; }
  // What the desktop says of its panel; call panelChanged after a change.
  PanelSignals panel;
  std::function<void()> panelChanged;
  TrayPaint paint;
  // False for a Wayland desktop, where no program places a menu.
  bool canPopUpMenus = true;
  // Called as an item leaves the tray.
  std::function<void(const Item&)> onRemove;

private:
  std::vector<Item*> items_;
};

} // namespace lb
