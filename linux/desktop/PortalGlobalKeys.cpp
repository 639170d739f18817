#include "linux/desktop/PortalGlobalKeys.h"

#include "foundation/PXRLog.h"
#include "foundation/Translatable.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>
#include <QKeySequence>
#include <QTimer>

namespace lb {

namespace {

constexpr const char* service = "org.freedesktop.portal.Desktop";
constexpr const char* path = "/org/freedesktop/portal/desktop";
constexpr const char* interface = "org.freedesktop.portal.GlobalShortcuts";
constexpr const char* requestInterface = "org.freedesktop.portal.Request";

struct PortalShortcut {
  QString id;
  QVariantMap properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut) {
  argument.beginStructure();
  argument << shortcut.id << shortcut.properties;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut) {
  argument.beginStructure();
  argument >> shortcut.id >> shortcut.properties;
  argument.endStructure();
  return argument;
}

} // namespace

} // namespace lb

Q_DECLARE_METATYPE(lb::PortalShortcut)

namespace lb {

std::unique_ptr<PortalGlobalKeys> PortalGlobalKeys::make(QDBusConnection bus) {
  auto get = QDBusMessage::createMethodCall(service, path, "org.freedesktop.DBus.Properties", "Get");
  get << interface << "version";
  QDBusReply<QDBusVariant> reply = bus.call(get, QDBus::Block, 3000);
  if (!reply.isValid()) return nullptr;
  return std::unique_ptr<PortalGlobalKeys>(new PortalGlobalKeys(bus, reply.value().variant().toUInt()));
}

PortalGlobalKeys::PortalGlobalKeys(QDBusConnection bus, uint version) : bus_(std::move(bus)), version_(version) {
  qDBusRegisterMetaType<PortalShortcut>();
  qDBusRegisterMetaType<QList<PortalShortcut>>();
  bus_.connect(service, path, interface, "Activated", this,
               SLOT(activated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
}

std::optional<std::string> PortalGlobalKeys::method() const {
  return "the desktop portal's GlobalShortcuts (version " + std::to_string(version_) + ")";
}

QString PortalGlobalKeys::preferredTrigger(const std::string& keySequence) {
  const auto sequence = QKeySequence::fromString(QString::fromStdString(keySequence), QKeySequence::PortableText);
  if (sequence.count() != 1) return {};
  const auto combination = sequence[0];
  QStringList parts;
  const auto modifiers = combination.keyboardModifiers();
  if (modifiers & Qt::ControlModifier) parts << "CTRL";
  if (modifiers & Qt::AltModifier) parts << "ALT";
  if (modifiers & Qt::ShiftModifier) parts << "SHIFT";
  if (modifiers & Qt::MetaModifier) parts << "LOGO";
  const auto key = QKeySequence(combination.key()).toString(QKeySequence::PortableText);
  parts << (key.size() == 1 ? key.toLower() : key);
  return parts.join('+');
}

void PortalGlobalKeys::grab(const std::string& id, const std::string& keySequence, const std::string& description,
                            std::function<void()> pressed, Done done) {
  shortcuts_[id] = {keySequence, description, std::move(pressed), std::move(done)};
  scheduleBinding();
}

void PortalGlobalKeys::release(const std::string& id) {
  if (shortcuts_.erase(id)) scheduleBinding();
}

// Changes that come together (every device at start) make one binding.
void PortalGlobalKeys::scheduleBinding() {
  if (std::exchange(scheduled_, true)) return;
  QTimer::singleShot(0, this, [this] {
    scheduled_ = false;
    createSession();
  });
}

void PortalGlobalKeys::createSession() {
  if (!session_.isEmpty()) {
    bus_.call(QDBusMessage::createMethodCall(service, session_, "org.freedesktop.portal.Session", "Close"),
              QDBus::NoBlock);
    session_.clear();
  }
  if (shortcuts_.empty()) return;
  request("CreateSession", {}, {{"session_handle_token", "lanternbud" + QString::number(nextToken_++)}});
}

void PortalGlobalKeys::bindShortcuts() {
  QList<PortalShortcut> list;
  for (const auto& [id, shortcut] : shortcuts_) {
    list << PortalShortcut{QString::fromStdString(id),
                           {{"description", QString::fromStdString(shortcut.description)},
                            {"preferred_trigger", preferredTrigger(shortcut.keySequence)}}};
  }
  request("BindShortcuts", {QVariant::fromValue(QDBusObjectPath(session_)), QVariant::fromValue(list), QString()}, {});
}

// The answer comes as a signal on the request's handle, which the portal
// derives from our name and a token: listened for before asking.
void PortalGlobalKeys::request(const QString& method, QVariantList arguments, QVariantMap options) {
  const auto token = "lanternbud" + QString::number(nextToken_++);
  options.insert("handle_token", token);
  awaited_ = QString(path) + "/request/" + bus_.baseService().mid(1).replace('.', '_') + "/" + token;
  bus_.connect(service, awaited_, requestInterface, "Response", this, SLOT(response(uint, QVariantMap, QDBusMessage)));
  auto call = QDBusMessage::createMethodCall(service, path, interface, method);
  arguments << options;
  call.setArguments(arguments);
  auto reply = bus_.call(call, QDBus::Block, 5000);
  if (reply.type() == QDBusMessage::ErrorMessage) {
    PXR_LOG_ERROR("The desktop portal did not take the shortcuts: " + reply.errorMessage().toStdString());
    answerPending(std::nullopt);
    return;
  }
  const auto handle = reply.arguments().value(0).value<QDBusObjectPath>().path();
  if (handle != awaited_) { // an older portal chooses its own handles
    bus_.disconnect(service, awaited_, requestInterface, "Response", this,
                    SLOT(response(uint, QVariantMap, QDBusMessage)));
    awaited_ = handle;
    bus_.connect(service, awaited_, requestInterface, "Response", this,
                 SLOT(response(uint, QVariantMap, QDBusMessage)));
  }
}

void PortalGlobalKeys::response(uint code, const QVariantMap& results, const QDBusMessage& message) {
  bus_.disconnect(service, message.path(), requestInterface, "Response", this,
                  SLOT(response(uint, QVariantMap, QDBusMessage)));
  if (message.path() != awaited_) return; // superseded
  if (code != 0) {
    PXR_LOG_ERROR("The desktop portal refused the shortcuts (answer " + std::to_string(code) + ").");
    answerPending(std::nullopt);
  } else if (results.contains("session_handle")) {
    const auto handle = results.value("session_handle");
    session_ = handle.canConvert<QDBusObjectPath>() ? handle.value<QDBusObjectPath>().path() : handle.toString();
    bindShortcuts();
  } else {
    answerPending(results);
  }
}

// The desktop's triggers for the keys it took; without an answer, every
// shortcut waiting for one is refused.
void PortalGlobalKeys::answerPending(const std::optional<QVariantMap>& bound) {
  std::map<std::string, std::string> triggers;
  if (bound) {
    QList<PortalShortcut> list;
    bound->value("shortcuts").value<QDBusArgument>() >> list;
    for (const auto& each : list) {
      triggers[each.id.toStdString()] = each.properties.value("trigger_description").toString().toStdString();
    }
  }
  for (auto& [id, shortcut] : shortcuts_) {
    auto done = std::exchange(shortcut.done, nullptr);
    if (!done) continue;
    auto trigger = triggers.find(id);
    if (!bound) {
      done(Failure{std::string(translatable("the desktop refused it"))});
    } else if (trigger == triggers.end()) {
      done(Failure{std::string(translatable("the desktop did not take it"))});
    } else {
      done(trigger->second.empty() ? shortcut.keySequence : trigger->second);
    }
  }
}

void PortalGlobalKeys::activated(const QDBusObjectPath& session, const QString& id, qulonglong, const QVariantMap&) {
  if (session.path() != session_) return;
  if (auto found = shortcuts_.find(id.toStdString()); found != shortcuts_.end()) {
    auto pressed = found->second.pressed;
    pressed();
  }
}

} // namespace lb
