#include "ui/DialogAlerts.h"

#include "core/LogAreas.h"
#include "core/Texts.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>

namespace lb {

std::size_t DialogAlerts::runModal(const Alert& alert) {
  QMessageBox box(QMessageBox::Warning, "Lanternbud", QString::fromStdString(alert.message));
  box.setInformativeText(QString::fromStdString(alert.informativeText));
  std::vector<QAbstractButton*> buttons;
  // One role for all keeps them in the order given.
  for (const auto& title : alert.buttons) {
    buttons.push_back(box.addButton(QString::fromStdString(title), QMessageBox::ActionRole));
  }
  if (!buttons.empty()) {
    box.setDefaultButton(static_cast<QPushButton*>(buttons.front()));
    box.setEscapeButton(buttons.front());
  }
  box.exec();
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    if (box.clickedButton() == buttons[i]) return i;
  }
  return 0;
}

void DialogAlerts::openHelpPage(const std::string& page) {
  for (const auto& folder : helpFolders_) {
    const auto file = folder / (page + ".html");
    if (!std::filesystem::exists(file)) continue;
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(file.string())))) {
      PXR_LOG_ERROR("No browser could open " + file.string());
      runModal({localized("The help could not be opened."),
                formatted(localized("No program on this computer opens web pages. The page is %@."), file.string()),
                {localized("OK")}});
    }
    return;
  }
  PXR_LOG_ERROR("The help page \"" + page + "\" is not installed.");
}

} // namespace lb
