// How long the tray takes to draw every picture anew: 10 items, each given
// a new picture (a dimmed icon with its battery gauge) as after a change of
// state, drawn at every size a tray asks for. The tray host's fetch of the
// pictures is not included: this runs on Qt's offscreen platform.
//   tray_redraw_benchmark [rounds]   (default 200)
#include "core/MenuBarIconOption.h"
#include "ui/SvgImages.h"
#include "ui/TrayStatusBar.h"

#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace lb;

// Nothing here shows a message.
struct NoNotifications final : Notifications {
  void show(const Notification&, Id, Done) override {}
};

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 200;
  NoNotifications notifications;
  TrayStatusBar bar(TrayHost::Kind::xembed, notifications);
  bar.setPaint({"white", false});
  SvgImages images;
  std::vector<std::unique_ptr<StatusItem>> items;
  for (int i = 0; i < 10; ++i) items.push_back(bar.createStatusItem(27, "lanternbud-device-" + std::to_string(i)));
  std::vector<double> times;
  for (int round = 0; round < rounds; ++round) {
    QElapsedTimer clock;
    clock.start();
    for (std::size_t i = 0; i < items.size(); ++i) {
      const auto option = allMenuBarIconOptions()[i * 4].option;
      // A level that differs from the round before: a picture never shown.
      const int level = (round * 7) % 101;
      items[i]->setImage(image(images, option, level, level <= 20, round % 2 ? 0.25 : 1.0));
    }
    times.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
  }
  std::sort(times.begin(), times.end());
  std::printf("redrawing 10 tray items with new pictures, over %d rounds: median %.2f ms, worst %.2f ms\n", rounds,
              times[times.size() / 2], times.back());
  return 0;
}
