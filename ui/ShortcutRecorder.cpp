#include "ui/ShortcutRecorder.h"

#include "core/ShortcutBinder.h"
#include "ui/UiText.h"

#include <QEvent>
#include <QGridLayout>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QPushButton>

namespace lb {

namespace {

// One combination is a shortcut: it is taken as soon as it is pressed,
// without waiting for more keys.
class KeyField final : public QKeySequenceEdit {
public:
  KeyField(std::function<void()> pressed, QWidget* parent) : QKeySequenceEdit(parent), pressed_(std::move(pressed)) {}

protected:
  void keyPressEvent(QKeyEvent* event) override {
    QKeySequenceEdit::keyPressEvent(event);
    if (!keySequence().isEmpty()) pressed_();
  }

private:
  std::function<void()> pressed_;
};

} // namespace

ShortcutRecorder::ShortcutRecorder(ShortcutBinder& binder, QWidget* parent)
    : QWidget(parent), binder_(binder), edit_(new KeyField([this] { record(); }, this)),
      clear_(new QPushButton(uiText("Clear"), this)), note_(new QLabel(this)) {
  edit_->setObjectName("shortcut");
  edit_->setAccessibleName(uiText("Keyboard shortcut"));
  edit_->setToolTip(uiText("Click, then press the keys: Ctrl, Alt or Super with a key, or a function key alone"));
  clear_->setObjectName("clearShortcut");
  clear_->setAccessibleName(uiText("Clear the keyboard shortcut"));
  note_->setObjectName("shortcutNote");
  note_->setWordWrap(true);
  note_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(edit_, 0, 0);
  layout->addWidget(clear_, 0, 1);
  layout->addWidget(note_, 1, 0, 1, 2);
  setFocusProxy(edit_); // the form's label reaches the field
  edit_->installEventFilter(this);

  connect(clear_, &QPushButton::clicked, this, [this] {
    if (key_) binder_.setShortcut(*key_, std::nullopt);
    showState();
  });
  changes_ = binder_.addChangeListener([this](const std::string& key) {
    if (key == key_) showState();
  });
  showState();
}

ShortcutRecorder::~ShortcutRecorder() = default;

bool ShortcutRecorder::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn) suspension_ = binder_.suspend();
  if (event->type() == QEvent::FocusOut) suspension_.reset();
  return QWidget::eventFilter(watched, event);
}

// The same device again leaves a refusal shown and keys half typed alone.
void ShortcutRecorder::setDevice(const std::optional<std::string>& defaultsKey, std::int64_t deviceID) {
  if (defaultsKey == key_ && deviceID == deviceID_) return;
  key_ = defaultsKey;
  deviceID_ = deviceID;
  showState();
}

void ShortcutRecorder::record() {
  const auto keys = edit_->keySequence();
  if (!key_ || keys.isEmpty()) return;
  const auto text = QKeySequence(keys[0]).toString(QKeySequence::PortableText).toStdString();
  auto stored = binder_.setShortcut(*key_, text);
  showState();
  if (!stored) {
    note_->setText(uiText("%1 cannot be the shortcut: %2")
                       .arg(QString::fromStdString(text), QString::fromStdString(stored.failure().reason)));
  }
}

void ShortcutRecorder::showState() {
  const bool possible = binder_.method().has_value();
  const auto state = key_ ? binder_.state(*key_) : ShortcutBinder::State{};
  {
    QSignalBlocker quiet(edit_);
    edit_->setKeySequence(state.keySequence ? QKeySequence::fromString(QString::fromStdString(*state.keySequence),
                                                                       QKeySequence::PortableText)
                                            : QKeySequence());
  }
  edit_->setEnabled(key_ && possible);
  clear_->setEnabled(key_ && state.keySequence);
  const auto note = key_ ? noteOn(state, possible) : QString();
  note_->setText(note);
  note_->setVisible(!note.isEmpty());
}

// Why the shortcut does nothing, or the keys the desktop chose instead.
QString ShortcutRecorder::noteOn(const ShortcutBinder::State& state, bool possible) const {
  if (!possible) {
    return QString::fromStdString(
        formatted(localized("This desktop offers programs no global shortcuts. Bind “lanternbud-ctl toggle %@” "
                            "to a key in your desktop’s keyboard settings instead."),
                  std::to_string(deviceID_)));
  }
  if (state.problem)
    return QString::fromStdString(formatted(localized("The shortcut does nothing: %@"), *state.problem));
  if (!state.trigger || !state.keySequence) return {};
  const auto asked = QKeySequence::fromString(QString::fromStdString(*state.keySequence), QKeySequence::PortableText)
                         .toString(QKeySequence::NativeText)
                         .toStdString();
  return *state.trigger == asked
             ? QString()
             : QString::fromStdString(formatted(localized("The desktop set it to %@."), *state.trigger));
}

} // namespace lb
