#include "core/ShortcutBinder.h"

#include "core/LogAreas.h"
#include "core/Texts.h"

#include <set>
#include <vector>

namespace lb {

namespace {

constexpr const char* keySequenceKey = "keySequence";

// "Ctrl+Alt+H" as its parts; "Ctrl++" ends in the plus key.
std::vector<std::string> partsOf(const std::string& keySequence) {
  std::vector<std::string> parts;
  std::string part;
  for (char c : keySequence) {
    if (c == '+' && !part.empty()) {
      parts.push_back(part);
      part.clear();
    } else {
      part += c;
    }
  }
  if (!part.empty()) parts.push_back(part);
  return parts;
}

bool isFunctionKey(const std::string& key) {
  if (key.size() < 2 || key.size() > 3 || key[0] != 'F') return false;
  for (std::size_t i = 1; i < key.size(); ++i) {
    if (key[i] < '0' || key[i] > '9') return false;
  }
  const int number = std::stoi(key.substr(1));
  return number >= 1 && number <= 35;
}

} // namespace

class ShortcutBinder::Suspension final : public NotificationRegistration {
public:
  explicit Suspension(ShortcutBinder& binder) : binder_(binder), alive_(binder.alive_) {
    if (binder_.suspensions_++ == 0) binder_.keys_.setSuspended(true);
  }
  ~Suspension() override {
    if (alive_.lock() && --binder_.suspensions_ == 0) binder_.keys_.setSuspended(false);
  }

private:
  ShortcutBinder& binder_;
  std::weak_ptr<bool> alive_;
};

std::unique_ptr<NotificationRegistration> ShortcutBinder::suspend() { return std::make_unique<Suspension>(*this); }

ShortcutBinder::ShortcutBinder(UserDefaults& defaults, GlobalKeys& keys) : defaults_(defaults), keys_(keys) {
  storedChanges_ = defaults_.addChangeListener([this](const std::string& key) {
    if (bindings_.contains(key)) bind(key);
  });
}

ShortcutBinder::~ShortcutBinder() {
  for (const auto& [key, binding] : bindings_) keys_.release(key);
}

std::optional<Wording> ShortcutBinder::refusal(const std::string& keySequence) {
  if (keySequence.find(',') != std::string::npos)
    return Wording{translatable("A shortcut is one combination of keys.")};
  const auto parts = partsOf(keySequence);
  if (parts.empty()) return Wording{translatable("A shortcut needs a key.")};
  static const std::set<std::string> modifiers{"Ctrl", "Alt", "Meta", "Shift"};
  bool strong = false;
  for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
    if (!modifiers.contains(parts[i])) return Wording{translatable("“%@” is not a modifier key."), parts[i]};
    strong = strong || parts[i] != "Shift";
  }
  if (modifiers.contains(parts.back())) return Wording{translatable("A shortcut needs a key besides its modifiers.")};
  if (!strong && !isFunctionKey(parts.back())) {
    return Wording{translatable("Use Ctrl, Alt or the Super key with it; only function keys may stand alone.")};
  }
  return std::nullopt;
}

std::optional<std::string> ShortcutBinder::storedKeys(const std::string& defaultsKey) const {
  auto stored = defaults_.object(defaultsKey);
  const auto* dictionary = stored ? stored->as<SettingsValue::Dictionary>() : nullptr;
  if (!dictionary) return std::nullopt;
  auto found = dictionary->find(keySequenceKey);
  const auto* text = found == dictionary->end() ? nullptr : found->second.as<std::string>();
  if (!text || text->empty()) return std::nullopt;
  return *text;
}

const ShortcutBinder::Binding* ShortcutBinder::holderOf(const std::string& keySequence,
                                                        const std::string& except) const {
  for (const auto& [key, binding] : bindings_) {
    if (key != except && binding.state.keySequence == keySequence && !binding.state.problem) return &binding;
  }
  return nullptr;
}

void ShortcutBinder::bindShortcut(const std::string& defaultsKey, const std::string& name,
                                  std::function<void()> action) {
  bindings_[defaultsKey] = {name, std::move(action), {}};
  bind(defaultsKey);
}

void ShortcutBinder::breakBinding(const std::string& defaultsKey) {
  if (bindings_.erase(defaultsKey) == 0) return;
  keys_.release(defaultsKey);
  listeners_.notify(defaultsKey);
}

ShortcutBinder::State ShortcutBinder::state(const std::string& defaultsKey) const {
  auto found = bindings_.find(defaultsKey);
  if (found != bindings_.end()) return found->second.state;
  return {storedKeys(defaultsKey), std::nullopt, std::nullopt};
}

// Reserves the stored keys anew; every way of failing is said in the log
// and kept in the state for the window to show.
void ShortcutBinder::bind(const std::string& defaultsKey) {
  auto& binding = bindings_.at(defaultsKey);
  keys_.release(defaultsKey);
  binding.state = {storedKeys(defaultsKey), std::nullopt, std::nullopt};
  const auto keys = binding.state.keySequence;
  auto fail = [&](const Wording& problem) {
    binding.state.problem = problem.shown();
    PXR_LOG_ERROR("The shortcut " + *keys + " for " + binding.name + " does nothing: " + problem.inEnglish());
  };
  if (!keys) {
    // nothing stored: nothing to reserve
  } else if (auto refused = refusal(*keys)) {
    fail(*refused);
  } else if (const auto* holder = holderOf(*keys, defaultsKey)) {
    fail({translatable("it is the shortcut of %@ already."), holder->name});
  } else if (!keys_.method()) {
    binding.state.problem = localized("this desktop offers programs no global shortcuts.");
  } else {
    keys_.grab(
        defaultsKey, *keys, formatted(localized("Connect or disconnect %@"), binding.name),
        [this, defaultsKey] {
          if (suspensions_ > 0) return;
          if (auto found = bindings_.find(defaultsKey); found != bindings_.end()) {
            auto action = found->second.action; // the action may rebind
            action();
          }
        },
        [this, alive = std::weak_ptr<bool>(alive_), defaultsKey, keys](const Result<std::string>& taken) {
          if (!alive.lock()) return;
          auto found = bindings_.find(defaultsKey);
          if (found == bindings_.end() || found->second.state.keySequence != keys) return; // superseded
          auto& state = found->second.state;
          if (taken) {
            state.trigger = taken.value();
          } else {
            const Wording problem{taken.failure().reason, *keys};
            state.problem = problem.shown();
            PXR_LOG_ERROR("The shortcut " + *keys + " for " + found->second.name +
                          " does nothing: " + problem.inEnglish());
          }
          listeners_.notify(defaultsKey);
        });
    return;
  }
  listeners_.notify(defaultsKey);
}

Result<> ShortcutBinder::setShortcut(const std::string& defaultsKey, const std::optional<std::string>& keySequence) {
  if (!keySequence) {
    defaults_.removeValue(defaultsKey);
    return {};
  }
  if (auto refused = refusal(*keySequence)) return Failure{refused->shown()};
  if (const auto* holder = holderOf(*keySequence, defaultsKey)) {
    return Failure{formatted(localized("It is the shortcut of %@ already."), holder->name)};
  }
  defaults_.setValue(defaultsKey, SettingsValue::Dictionary{{keySequenceKey, *keySequence}});
  return {};
}

} // namespace lb
