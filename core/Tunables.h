#pragma once

#include "core/UserDefaults.h"
#include "foundation/Clock.h"

#include <cstdint>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace lb {

// When a tunable key is read.
enum class TunableRead {
  oncePerProcess, // at first use; later changes wait for the next start
  eachUse,        // every time the operation that needs it runs
  registered,     // every use, its default placed in the registration domain
};

// The values a number may take. One outside them, or no number at all, is
// ignored with a log line when found, and refused when set: an interval of 0
// would spin a core.
struct TunableRange {
  double minimum = -std::numeric_limits<double>::infinity();
  double maximum = std::numeric_limits<double>::infinity();
  bool contains(double value) const { return value >= minimum && value <= maximum; } // false for NaN
};

// What a setting holds, as the key table says and a stored value is checked
// against.
enum class SettingType { boolean, integer, number, text, textList, data, shortcut, anything };

namespace tunable {
struct Known {
  SettingType type;
  TunableRange range;
  // A text must also pass this, which `form` describes; none: any text.
  bool (*textCheck)(std::string_view) = nullptr;
  const char* form = nullptr;
};
// Every tunable by its key, filled as the tunables below are defined.
std::map<std::string_view, Known>& known();
// "#rgb", "#rrggbb" (and Qt's longer forms) or a colour name.
bool isColour(std::string_view text);
} // namespace tunable

template <class T>
struct Tunable {
  static constexpr bool numeric = std::is_arithmetic_v<T> || std::is_same_v<T, Seconds>;

  Tunable(std::string_view name, T value, TunableRead when, TunableRange valid = {},
          bool (*textCheck)(std::string_view) = nullptr, const char* form = nullptr)
      : key(name), defaultValue(std::move(value)), read(when), range(valid) {
    tunable::known().insert_or_assign(key, tunable::Known{type(), range, textCheck, form});
  }

  std::string_view key;
  T defaultValue;
  TunableRead read;
  TunableRange range;

private:
  static constexpr SettingType type() {
    if constexpr (std::is_same_v<T, bool>) return SettingType::boolean;
    else if constexpr (std::is_integral_v<T>) return SettingType::integer;
    else if constexpr (numeric) return SettingType::number;
    else if constexpr (std::is_same_v<T, std::string>) return SettingType::text;
    else return SettingType::textList;
  }
};

// Every tunable key with its type and compiled-in default. No window shows
// them; an expert sets one with `lanternbud-ctl config set` or for one run
// with "-Key value" on the command line.
namespace tunable {
using Names = std::vector<std::string>;
constexpr auto once = TunableRead::oncePerProcess;
constexpr auto each = TunableRead::eachUse;

inline const Tunable<bool> ConnectionUpdateUseTimer{"ConnectionUpdateUseTimer", true, each};
inline const Tunable<Seconds> ConnectionUpdateTimerInterval{
    "ConnectionUpdateTimerInterval", Seconds(1.0), once, {0.05, 3600}};
inline const Tunable<Seconds> ConnectionUpdateFastTimerInterval{
    "ConnectionUpdateFastTimerInterval", Seconds(0.1), once, {0.02, 60}};
inline const Tunable<Seconds> ConnectionUpdateFastTimerDuration{
    "ConnectionUpdateFastTimerDuration", Seconds(10.0), once, {0, 3600}};
inline const Tunable<Seconds> ConnectionWaitInterval{"ConnectionWaitInterval", Seconds(1.0), once, {0, 600}};
inline const Tunable<bool> TrySyncConnectFirst{"TrySyncConnectFirst", true, each};
inline const Tunable<bool> DeviceSettingDisableDisconnectObservation{"DeviceSettingDisableDisconnectObservation", false,
                                                                     each};
inline const Tunable<bool> EnableAudioOutput{"EnableAudioOutput", true, once};
inline const Tunable<bool> EnableAutoSettingAudioOutput{"EnableAutoSettingAudioOutput", true, once};
inline const Tunable<bool> RememberAudioInputWhenSettingAudioOutput{"RememberAudioInputWhenSettingAudioOutput", true,
                                                                    once};
inline const Tunable<bool> FixAudioInputWhenSettingAudioOutput{"FixAudioInputWhenSettingAudioOutput", true, once};
inline const Tunable<bool> RunConnectionScriptWhenSettingAudioOutput{"RunConnectionScriptWhenSettingAudioOutput", true,
                                                                     once};
inline const Tunable<Seconds> ConnectionScriptInterval{"ConnectionScriptInterval", Seconds(4.0), once, {0, 3600}};
inline const Tunable<bool> OnlySetOutputDeviceIfNecessary{"OnlySetOutputDeviceIfNecessary", false, each};
inline const Tunable<bool> OnlySetInputDeviceIfNecessary{"OnlySetInputDeviceIfNecessary", true, each};
inline const Tunable<Seconds> InputDeviceManagerTimerInterval{
    "InputDeviceManagerTimerInterval", Seconds(10.0), each, {0.05, 3600}};
inline const Tunable<bool> InputDeviceManagerPeriodicUpdates{"InputDeviceManagerPeriodicUpdates", true, each};
inline const Tunable<Seconds> InputDeviceManagerFinalRestorationDelay{
    "InputDeviceManagerFinalRestorationDelay", Seconds(12.0), each, {0, 3600}};
// How long a connection the user started waits for its sound output device:
// Linux's sound server makes it a few seconds after the link.
inline const Tunable<Seconds> ManualConnectionAudioOutputWindow{
    "ManualConnectionAudioOutputWindow", Seconds(8.0), once, {0, 600}};
inline const Tunable<bool> WorkAroundMissingAudioDevice{"WorkAroundMissingAudioDevice", true, once};
inline const Tunable<std::int64_t> MissingAudioDeviceTries{"MissingAudioDeviceTries", 5, once, {0, 100}};
inline const Tunable<Seconds> MissingAudioDeviceDisconnectionDelay{
    "MissingAudioDeviceDisconnectionDelay", Seconds(1.0), once, {0, 600}};
// A connect or disconnect script still running after this is ended, with
// whatever it started.
inline const Tunable<Seconds> ScriptTimeLimit{"ScriptTimeLimit", Seconds(300.0), each, {0.1, 86400}};
inline const Tunable<bool> ChangeIconWhileFixingAudioOutput{"ChangeIconWhileFixingAudioOutput", false, each};
// Half, not a quarter: a quarter of a thin stroke cannot be told from the
// panel (under 3:1) on a dark one, nor at 0.4 on a light one.
inline const Tunable<double> NotAudioOutputFraction{"NotAudioOutputFraction", 0.5, once, {0, 1}};
// The default is the tray's icon size plus 5, which only the tray knows: the
// read passes it in.
inline const Tunable<double> StatusItemLength{"StatusItemLength", 0.0, once, {0, 1000}};
// The colour of the tray's pictures ("white", "#303030"); empty chooses
// light or dark from what the desktop says of its panel.
inline const Tunable<std::string> TrayIconColor{
    "TrayIconColor", "", each, {}, isColour, "a colour name or #rrggbb, or nothing to follow the panel"};
// How long a program started with the session waits for the panel's tray.
inline const Tunable<Seconds> TrayHostWaitInterval{"TrayHostWaitInterval", Seconds(5.0), once, {0, 120}};
inline const Tunable<Seconds> DeviceInfoStalenessInterval{
    "DeviceInfoStalenessInterval", Seconds(60.0), once, {0, 86400}};
// A device whose warnings are on warns once at or below each level.
inline const Tunable<std::int64_t> LowBatteryWarningLevel{"LowBatteryWarningLevel", 20, each, {1, 95}};
inline const Tunable<std::int64_t> LowBatteryCriticalLevel{"LowBatteryCriticalLevel", 5, each, {0, 95}};
// A battery's time left is told from a steady fall this long at least.
inline const Tunable<Seconds> BatteryEstimateMinimumSpan{
    "BatteryEstimateMinimumSpan", Seconds(1800.0), each, {10, 86400}};
inline const Tunable<bool> DisableMontereyBatteryInfo{"DisableMontereyBatteryInfo", false, each};
// Off: on Linux the battery sources are live mirrors of BlueZ and UPower,
// never stale, so a helper process would only cost a process a device.
inline const Tunable<bool> BatteryInfoUseHelper{"BatteryInfoUseHelper", false, TunableRead::registered};
inline const Tunable<Seconds> BatteryInfoStalenessInterval{
    "BatteryInfoStalenessInterval", Seconds(600.0), TunableRead::registered, {0, 31536000}};
inline const Tunable<bool> BatteryInfoDisableRegistry{"BatteryInfoDisableRegistry", false, each};
// On Linux the battery registry is UPower, whose devices all carry this name.
inline const Tunable<Names> BatteryInfoRegistryIncludedNames{
    "BatteryInfoRegistryIncludedNames", {"org.freedesktop.UPower.Device"}, each};
inline const Tunable<Names> BatteryInfoRegistryExcludedNames{"BatteryInfoRegistryExcludedNames", {}, each};
inline const Tunable<bool> BatteryInfoDisableCache{"BatteryInfoDisableCache", false, each};
inline const Tunable<bool> LowEnergyBatteryInfoEnable{"LowEnergyBatteryInfoEnable", false, each};
inline const Tunable<std::string> LowEnergyBatteryInfoPattern{"LowEnergyBatteryInfoPattern", "", each};
} // namespace tunable

// Reads tunable keys. One instance per program run: a key read once keeps
// its first value for the life of this object.
class Tunables {
public:
  // Registers the defaults of the registered keys.
  explicit Tunables(UserDefaults& defaults);

  // Whether the key was read once already, so that a new value waits for
  // the next start.
  bool isFixedForThisRun(std::string_view key) const {
    std::lock_guard lock(mutex_);
    return once_.contains(key);
  }

  template <class T>
  T operator()(const Tunable<T>& tunable) const {
    return (*this)(tunable, tunable.defaultValue);
  }

  // With a default that only the caller knows.
  template <class T>
  T operator()(const Tunable<T>& tunable, const T& fallback) const {
    if (tunable.read != TunableRead::oncePerProcess) return read(tunable.key, fallback);
    std::lock_guard lock(mutex_);
    auto found = once_.find(tunable.key);
    if (found == once_.end()) found = once_.emplace(tunable.key, read(tunable.key, fallback)).first;
    return std::get<T>(found->second);
  }

private:
  using Value = std::variant<bool, std::int64_t, double, Seconds, std::string, tunable::Names>;

  // Type and range are checked where the value is read: a value that does
  // not fit its key gives `fallback`, with a log line.
  bool read(std::string_view key, bool fallback) const;
  std::int64_t read(std::string_view key, std::int64_t fallback) const;
  double read(std::string_view key, double fallback) const;
  // Durations are stored as numbers of seconds.
  Seconds read(std::string_view key, Seconds fallback) const { return Seconds(read(key, fallback.count())); }
  std::string read(std::string_view key, const std::string& fallback) const;
  tunable::Names read(std::string_view key, const tunable::Names& fallback) const;

  UserDefaults& defaults_;
  mutable std::mutex mutex_;
  mutable std::map<std::string_view, Value> once_;
};

} // namespace lb
