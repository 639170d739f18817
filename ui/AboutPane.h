#pragma once

#include <QWidget>

namespace lb {

class DiagnosticReporter;
struct Services;

// The About tab: the version (with the build in its tool tip), the
// copyright and licence, the manual and support pages, and saving a
// diagnostic report.
class AboutPane final : public QWidget {
  Q_OBJECT
public:
  AboutPane(Services& services, DiagnosticReporter& reporter, QWidget* parent);
};

} // namespace lb
