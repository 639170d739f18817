#include "ui/IconPicker.h"

#include "ports/Images.h"
#include "ui/TrayImage.h"
#include "ui/UiText.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace lb {

namespace {
constexpr int columns = 8; // the largest group's size
} // namespace

IconPicker::IconPicker(Images& images, QWidget* parent)
    : QFrame(parent, Qt::Popup), images_(images),
      connected_(new QCheckBox(uiText("Show the co&nnected pictures"), this)), area_(new QScrollArea(this)) {
  setObjectName("iconPicker");
  setAccessibleName(uiText("Pictures"));
  setFrameShape(QFrame::StyledPanel);
  connected_->setObjectName("connectedPictures");
  connect(connected_, &QCheckBox::toggled, this, &IconPicker::draw);

  // The grid scrolls where the screen is too short for it.
  auto* grids = new QWidget;
  auto* layout = new QVBoxLayout(grids);
  area_->setWidget(grids);
  area_->setWidgetResizable(true);
  area_->setFrameShape(QFrame::NoFrame);
  area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  auto* outer = new QVBoxLayout(this);
  outer->addWidget(connected_);
  outer->addWidget(area_);
  auto* group = new QButtonGroup(this);
  QGridLayout* grid = nullptr;
  int index = 0;
  auto startGroup = [&] {
    grid = new QGridLayout;
    grid->setSpacing(2);
    layout->addLayout(grid);
    index = 0;
  };
  startGroup();
  for (const auto& entry : availableIconsForMenu(images_)) {
    if (!entry) { // the catalogue's groups, a line between each two
      auto* line = new QFrame(grids);
      line->setFrameShape(QFrame::HLine);
      line->setFrameShadow(QFrame::Sunken);
      layout->addWidget(line);
      startGroup();
      continue;
    }
    auto* picture = new QToolButton(grids);
    picture->setText(nameOf(*entry));
    picture->setAccessibleName(picture->text());
    picture->setToolTip(picture->text());
    picture->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    picture->setIconSize(QSize(24, 24));
    picture->setCheckable(true);
    picture->setAutoRaise(true);
    picture->setFixedWidth(picture->fontMetrics().averageCharWidth() * 14);
    group->addButton(picture);
    connect(picture, &QToolButton::clicked, this, [this, option = *entry] {
      hide();
      emit chosen(option);
    });
    grid->addWidget(picture, index / columns, index % columns);
    ++index;
    pictures_.emplace_back(*entry, picture);
  }
}

void IconPicker::popUp(QWidget* button, MenuBarIconOption current) {
  draw();
  for (const auto& [option, picture] : pictures_) {
    picture->setChecked(option == current);
    if (option == current) picture->setFocus();
  }
  // Below the button, or above it where there is more room; as tall as the
  // room allows.
  const QRect screen = button->screen()->availableGeometry();
  const int top = button->mapToGlobal(QPoint(0, 0)).y();
  const int bottom = top + button->height();
  const auto* grids = area_->widget();
  const int chrome = sizeHint().height() - area_->sizeHint().height();
  const int wanted = grids->sizeHint().height() + 2 * area_->frameWidth() + chrome;
  const int roomBelow = screen.bottom() + 1 - bottom;
  const int roomAbove = top - screen.top();
  const bool below = wanted <= roomBelow || roomBelow >= roomAbove;
  const int tall = std::min(wanted, below ? roomBelow : roomAbove);
  const int wide = grids->sizeHint().width() + area_->verticalScrollBar()->sizeHint().width() + 2 * frameWidth() +
                   layout()->contentsMargins().left() + layout()->contentsMargins().right();
  resize(std::min(wide, screen.width()), tall);
  const int x = std::clamp(button->mapToGlobal(QPoint(0, 0)).x(), screen.left(),
                           std::max(screen.left(), screen.right() + 1 - width()));
  move(x, below ? bottom : top - tall);
  show();
  // A frame round the window, known once it shows, comes out of the room.
  if (const int frame = frameGeometry().height() - height(); frame > 0) {
    resize(width(), tall - frame);
    move(x, below ? bottom : top - tall);
  }
}

void IconPicker::draw() {
  const QColor ink = palette().color(QPalette::ButtonText);
  for (const auto& [option, picture] : pictures_) {
    const auto image = connected_->isChecked() ? connectedImage(images_, option)
                                               : images_.named(std::string(rawValue(option)));
    picture->setIcon(TrayImage::iconOf(image, ink));
  }
}

QString IconPicker::nameOf(MenuBarIconOption option) {
  using enum MenuBarIconOption;
  switch (option) {
  case wand: return uiText("Wand");
  case earbuds: return uiText("Earbuds");
  case phone: return uiText("Phone");
  case headset: return uiText("Headset");
  case headset2: return uiText("Headset with microphone");
  case box: return uiText("Box");
  case boombox: return uiText("Boombox");
  case airplaySpeaker: return uiText("Smart speaker");
  case horizontalSpeaker: return uiText("Wide speaker");
  case cylinderSpeaker: return uiText("Round speaker");
  case conferenceSpeaker: return uiText("Conference speaker");
  case desktopSpeaker: return uiText("Desktop speaker");
  case mouse: return uiText("Mouse");
  case mouseButtons: return uiText("Mouse with buttons");
  case graphicTablet: return uiText("Graphics tablet");
  case keyboard: return uiText("Keyboard");
  case gameController: return uiText("Game controller");
  case controller: return uiText("Controller");
  case headphones: return uiText("Headphones");
  default: break;
  }
  const auto product = lb::toolTip(option);
  return product ? QString::fromStdString(std::string(*product))
                 : QString::fromStdString(std::string(rawValue(option)));
}

} // namespace lb
