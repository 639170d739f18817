#pragma once

#include <QWidget>

namespace lb {

class Alerts;

// The About tab: the version (with the build in its tool tip), the
// copyright, and the manual and support pages.
class AboutPane final : public QWidget {
  Q_OBJECT
public:
  AboutPane(Alerts& alerts, QWidget* parent);
};

} // namespace lb
