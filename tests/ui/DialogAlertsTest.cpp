#include "tests/support/TemporaryDirectory.h"
#include "ui/DialogAlerts.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>

#include <gtest/gtest.h>

#include <fstream>

namespace lb {

// Offscreen, no program opens web pages: as on a machine without a browser.
TEST(DialogAlerts, AHelpPageThatNothingOpensIsSaid) {
  test::TemporaryDirectory folder;
  std::ofstream(folder.path() / "scripts.html") << "<p>Scripts</p>";
  DialogAlerts alerts({folder.path()});
  QString said;
  QTimer::singleShot(0, [&] {
    if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
      said = box->text() + "\n" + box->informativeText();
      box->accept();
    }
  });
  alerts.openHelpPage("scripts");
  EXPECT_EQ(said.toStdString(),
            "The help could not be opened.\nNo program on this computer opens web pages. The page is " +
                (folder.path() / "scripts.html").string() + ".");
}

} // namespace lb
