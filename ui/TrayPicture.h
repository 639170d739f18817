#pragma once

#include "ui/Spinner.h"
#include "ui/TrayImage.h"

#include <functional>
#include <memory>
#include <vector>

namespace lb {

class TrayStatusBar;

// What a tray item shows: the picture core chose, drawn in the panel's
// colour at the item's heights, or the spinner's frames while busy. An
// unchanged picture is not shown again.
class TrayPicture {
public:
  using Show = std::function<void(const QIcon&)>;
  TrayPicture(const TrayStatusBar& bar, std::vector<int> heights, Show show);

  void setImage(std::shared_ptr<Image> image);
  std::shared_ptr<Image> image() const { return image_; }
  void setBusy(bool busy);
  bool busy() const { return spinner_.spinning(); }
  // Draws the picture again, as when the panel's colour changed.
  void redraw();

private:
  void show();

  const TrayStatusBar& bar_;
  std::vector<int> heights_;
  Show show_;
  std::shared_ptr<TrayImage> image_;
  QString shownKey_; // the recipe shown now
  Spinner spinner_;
};

} // namespace lb
