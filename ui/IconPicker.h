#pragma once

#include "core/MenuBarIconOption.h"

#include <QFrame>

#include <utility>
#include <vector>

class QCheckBox;
class QScrollArea;
class QToolButton;

namespace lb {

class Images;

// The pictures a device can have, as a grid that drops from its button:
// grouped as the catalogue groups them, each with its name, and a switch for
// the connected pictures. Choosing one closes it; so do Escape and a click
// elsewhere.
class IconPicker final : public QFrame {
  Q_OBJECT
public:
  IconPicker(Images& images, QWidget* parent);

  // Opens under `button`, or above it where the screen ends there, with
  // `current` checked and focused.
  void popUp(QWidget* button, MenuBarIconOption current);

  // "Headphones", or a product's own name: the picture's name for people.
  static QString nameOf(MenuBarIconOption option);

signals:
  void chosen(MenuBarIconOption option);

private:
  // The pictures in the palette's text colour, filled or outlined.
  void draw();

  Images& images_;
  QCheckBox* connected_;
  QScrollArea* area_;
  std::vector<std::pair<MenuBarIconOption, QToolButton*>> pictures_;
};

} // namespace lb
