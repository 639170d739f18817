#include "ui/ReportSaver.h"

#include "ports/Alerts.h"
#include "ports/DiagnosticReporter.h"
#include "ports/EventLoop.h"
#include "ui/UiText.h"

#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QProgressDialog>
#include <QStandardPaths>

namespace lb {

ReportSaver::ReportSaver(DiagnosticReporter& reporter, EventLoop& loop, Alerts& alerts, QWidget* parent)
    : QObject(parent), reporter_(reporter), loop_(loop), alerts_(alerts), parent_(parent) {}

ReportSaver::~ReportSaver() {
  if (cancelled_) cancelled_->store(true);
}

void ReportSaver::start(bool maskAddresses) {
  if (saving_) return;
  // The desktop, where one is kept; else home.
  auto folder = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
  if (!QDir(folder).exists()) folder = QDir::homePath();
  const auto name = uiText("Lanternbud Report %1").arg(QDateTime::currentDateTime().toString("yyyy-MM-dd HH.mm")) +
                    ".tar.gz";
  auto* dialog = new QFileDialog(parent_, uiText("Save Diagnostic Report"), QDir(folder).filePath(name),
                                 uiText("Compressed archives (*.tar.gz)"));
  dialog->setObjectName("reportDestination");
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix("tar.gz");
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QFileDialog::fileSelected, this,
          [this, maskAddresses](const QString& file) { save(file, maskAddresses); });
  dialog->open();
}

void ReportSaver::save(const QString& file, bool maskAddresses) {
  saving_ = true;
  cancelled_ = std::make_shared<std::atomic<bool>>(false);
  progress_ = new QProgressDialog(uiText("Collecting the log files"), uiText("Cancel"), 0, 5, parent_);
  progress_->setObjectName("reportProgress");
  progress_->setWindowTitle(uiText("Saving Diagnostic Report"));
  progress_->setAttribute(Qt::WA_DeleteOnClose);
  progress_->setMinimumDuration(0);
  progress_->setAutoClose(false);
  progress_->setAutoReset(false);
  connect(progress_, &QProgressDialog::canceled, this, [cancelled = cancelled_] { cancelled->store(true); });
  progress_->setValue(0);

  QPointer<ReportSaver> self(this);
  auto& loop = loop_;
  // Each step is told on the main thread, where the dialog lives.
  auto progress = [&loop, self](int done, int total, const std::string& what) {
    loop.post([self, done, total, text = uiText(what)] {
      if (!self || !self->progress_) return;
      self->progress_->setMaximum(total);
      self->progress_->setValue(done);
      self->progress_->setLabelText(text);
    });
  };
  loop_.runBlocking(
      [&reporter = reporter_, destination = file.toStdString(), maskAddresses, progress, cancelled = cancelled_] {
        return reporter.saveReport(destination, maskAddresses, progress, *cancelled);
      },
      [self, file, cancelled = cancelled_](const Result<void>& result) {
        if (!self) return;
        self->saving_ = false;
        const bool wasCancelled = *cancelled;
        if (self->progress_) self->progress_->close(); // which says "canceled"
        if (wasCancelled) return emit self->finished(uiText("The report was cancelled; nothing was saved."), {});
        if (result) {
          const auto name = QFileInfo(file).fileName().toStdString();
          return emit self->finished(QString::fromStdString(formatted(localized("Saved the report as “%@”."), name)),
                                     file);
        }
        emit self->finished(uiText("The report could not be saved."), {});
        self->alerts_.runModal(
            {localized("The diagnostic report could not be saved."), result.failure().reason, {localized("OK")}});
      });
}

} // namespace lb
