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
    std::optional<StatusItemAppearance> appearance;
    int redraws = 0;
    bool busy = false;
    int menuPopUps = 0;

    Item(SimStatusBar& owner, double itemLength) : bar(owner), length(itemLength) {}
    ~Item() override {
      std::erase(bar.items_, this);
      if (bar.onRemove) bar.onRemove(*this);
    }
    void setAccessibilityLabel(const std::optional<std::string>& text) override { label = text; }
    void setAppearance(const StatusItemAppearance& shown) override {
      appearance = shown;
      ++redraws;
    }
    void setBusy(bool value) override { busy = value; }
    void popUpMenu() override { ++menuPopUps; }
    void setClickHandler(ClickHandler handler) override { onClick = std::move(handler); }

    // Plays a click on the item, as the user makes it.
    void click(StatusItemClick::Button button = StatusItemClick::Button::left, bool control = false) {
      if (onClick) onClick({button, control});
    }
    ClickHandler onClick;
  };

  double thickness() const override { return 22.0; }
  std::unique_ptr<StatusItem> createStatusItem(double length) override {
    auto item = std::make_unique<Item>(*this, length);
    items_.push_back(item.get());
    return item;
  }

  // The items now in the tray, oldest first.
  const std::vector<Item*>& items() const { return items_; }
  // Called as an item leaves the tray.
  std::function<void(const Item&)> onRemove;

private:
  std::vector<Item*> items_;
};

} // namespace lb
