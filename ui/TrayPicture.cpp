#include "ui/TrayPicture.h"

#include "ui/TrayStatusBar.h"

namespace lb {

TrayPicture::TrayPicture(const TrayStatusBar& bar, std::vector<int> heights, Show show)
    : bar_(bar), heights_(heights), show_(std::move(show)), spinner_(std::move(heights)) {}

void TrayPicture::setImage(std::shared_ptr<Image> image) {
  image_ = std::dynamic_pointer_cast<TrayImage>(image);
  if (!busy()) show();
}

void TrayPicture::show() {
  // A new paint comes with a redraw, so the recipe alone tells an unchanged picture.
  const QString key = image_ ? image_->key() : QString();
  if (key == shownKey_) return;
  shownKey_ = key;
  show_(image_ ? image_->icon(bar_.colour(), heights_, image_->isTemplate() ? bar_.halo() : std::nullopt) : QIcon());
}

void TrayPicture::redraw() {
  shownKey_.clear();
  if (!busy()) show();
}

void TrayPicture::setBusy(bool busy) {
  if (busy == this->busy()) return;
  if (busy) {
    spinner_.start(bar_.colour(), bar_.halo(), show_);
    shownKey_.clear();
  } else {
    spinner_.stop();
    show();
  }
}

} // namespace lb
