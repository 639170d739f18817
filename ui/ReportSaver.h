#pragma once

#include <QObject>
#include <QPointer>

#include <atomic>
#include <memory>

class QProgressDialog;
class QWidget;

namespace lb {

class Alerts;
class DiagnosticReporter;
class EventLoop;

// Saving a diagnostic report from the window: asks where, then writes it on
// a worker while a progress dialog tells each step and can cancel it. The
// tray and the window go on meanwhile. A failure is said in a dialog.
class ReportSaver final : public QObject {
  Q_OBJECT

public:
  ReportSaver(DiagnosticReporter& reporter, EventLoop& loop, Alerts& alerts, QWidget* parent);
  // A report still being written stops, and leaves nothing.
  ~ReportSaver() override;

  // Shows the save dialog, without waiting for it.
  void start(bool maskAddresses);

signals:
  // How it ended, in words for the window; `saved` is the file written, or
  // empty when none was.
  void finished(const QString& outcome, const QString& saved);

private:
  void save(const QString& file, bool maskAddresses);

  DiagnosticReporter& reporter_;
  EventLoop& loop_;
  Alerts& alerts_;
  QWidget* parent_;
  bool saving_ = false;
  QPointer<QProgressDialog> progress_;
  std::shared_ptr<std::atomic<bool>> cancelled_;
};

} // namespace lb
