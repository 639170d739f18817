#include "ui/AdvancedSheet.h"

#include "core/DeviceSetting.h"
#include "foundation/PXRLog.h"
#include "ui/UiText.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace lb {

namespace {

// Tab moves on to the next field, as everywhere else in the window;
// Ctrl+Tab types a tab.
class ScriptEditor final : public QPlainTextEdit {
public:
  ScriptEditor(const QString& text, QWidget* parent) : QPlainTextEdit(text, parent) {
    setTabChangesFocus(true);
    setToolTip(uiText("Tab moves to the next field; Ctrl+Tab types a tab."));
  }

protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Tab && event->modifiers() == Qt::ControlModifier) return insertPlainText("\t");
    QPlainTextEdit::keyPressEvent(event);
  }
};

QPlainTextEdit* editor(const QString& text, const QString& accessibleName, QWidget* parent) {
  auto* made = new ScriptEditor(text, parent);
  made->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  made->setLineWrapMode(QPlainTextEdit::NoWrap);
  made->setAccessibleName(accessibleName);
  made->setMinimumSize(480, 120);
  return made;
}

} // namespace

AdvancedSheet::AdvancedSheet(std::shared_ptr<DeviceSetting> setting, Services& services, QWidget* parent)
    : QDialog(parent), setting_(std::move(setting)), services_(services),
      runConnected_(new QCheckBox(uiText("Run this script after &connecting:"), this)),
      connected_(editor(QString::fromStdString(setting_->shellScriptAfterConnected()), uiText("Connect script"), this)),
      runDisconnected_(new QCheckBox(uiText("Run this script after &disconnecting:"), this)),
      disconnected_(
          editor(QString::fromStdString(setting_->shellScriptAfterDisconnected()), uiText("Disconnect script"), this)),
      problem_(new QLabel(this)) {
  setWindowTitle(QString::fromStdString(formatted(localized("Scripts of %@"), setting_->displayName())));
  runConnected_->setObjectName("runConnected");
  runConnected_->setAccessibleName(uiText("Run the connect script"));
  runConnected_->setChecked(setting_->runShellScriptAfterConnected());
  connected_->setObjectName("connectScript");
  runDisconnected_->setObjectName("runDisconnected");
  runDisconnected_->setAccessibleName(uiText("Run the disconnect script"));
  runDisconnected_->setChecked(setting_->runShellScriptAfterDisconnected());
  disconnected_->setObjectName("disconnectScript");
  problem_->setObjectName("problem");
  problem_->setWordWrap(true);
  problem_->hide();

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this);
  auto* doneButton = buttons->button(QDialogButtonBox::Ok);
  doneButton->setText(uiText("Done"));
  doneButton->setObjectName("done");
  connect(buttons, &QDialogButtonBox::accepted, this, &AdvancedSheet::done);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(buttons, &QDialogButtonBox::helpRequested, this, [this] { services_.alerts.openHelpPage("scripts"); });

  // A script typed while its switch is off would be saved and never run:
  // said beside it, while the switch stays the user's choice.
  auto notRunNote = [this](const char* name, QCheckBox* run, QPlainTextEdit* editor, const QString& text) {
    auto* note = new QLabel(text, this);
    note->setObjectName(name);
    note->setWordWrap(true);
    note->hide();
    auto update = [run, editor, note, original = editor->toPlainText()] {
      note->setVisible(!run->isChecked() && editor->toPlainText() != original);
    };
    connect(editor, &QPlainTextEdit::textChanged, note, update);
    connect(run, &QCheckBox::toggled, note, update);
    return note;
  };
  auto* connectedNote = notRunNote(
      "connectedNote", runConnected_, connected_,
      uiText("This script does not run until “Run this script after connecting” is ticked."));
  auto* disconnectedNote = notRunNote(
      "disconnectedNote", runDisconnected_, disconnected_,
      uiText("This script does not run until “Run this script after disconnecting” is ticked."));

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(runConnected_);
  layout->addWidget(connected_);
  layout->addWidget(connectedNote);
  layout->addWidget(runDisconnected_);
  layout->addWidget(disconnected_);
  layout->addWidget(disconnectedNote);
  layout->addWidget(problem_);
  layout->addWidget(buttons);
}

// The texts reach the device's options first, so that a failed write loses
// nothing: the sheet stays open, and Done tries again.
void AdvancedSheet::done() {
  const auto connectedText = connected_->toPlainText().toStdString();
  if (connectedText != setting_->shellScriptAfterConnected()) setting_->setShellScriptAfterConnected(connectedText);
  const auto disconnectedText = disconnected_->toPlainText().toStdString();
  if (disconnectedText != setting_->shellScriptAfterDisconnected()) {
    setting_->setShellScriptAfterDisconnected(disconnectedText);
  }
  setting_->setRunShellScriptAfterConnected(runConnected_->isChecked());
  setting_->setRunShellScriptAfterDisconnected(runDisconnected_->isChecked());
  if (auto saved = setting_->saveScripts(); !saved) {
    PXR_LOG_ERROR("Error saving script: " + saved.failure().reason);
    // The system's reason on a line of its own, after the whole sentence.
    problem_->setText(uiText("Unable to write script to the folder.") + "\n" +
                      QString::fromStdString(saved.failure().reason));
    problem_->show();
    emit scriptsChanged(); // the switches and texts are kept all the same
    return;
  }
  emit scriptsChanged();
  accept();
}

} // namespace lb
