#include "core/Texts.h"

#include <atomic>
#include <map>

namespace lb {

namespace {
std::atomic<Translator> installedTranslator{nullptr};
} // namespace

void installTranslator(Translator translator) { installedTranslator.store(translator, std::memory_order_release); }

std::string localized(std::string_view english) {
  // Translations are looked up by the key and say what its Linux wording says.
  if (auto translator = installedTranslator.load(std::memory_order_acquire)) {
    if (auto translated = translator(english, -1)) return *std::move(translated);
  }
  static const std::map<std::string_view, std::string_view> linux{
      {"Your Mac could not connect to “%@”.", "Your computer could not connect to “%@”."},
      {"Please make sure that Bluetooth is enabled in the Bluetooth pane in System Settings.",
       "Please make sure that Bluetooth is turned on in your desktop’s Bluetooth settings."},
      {"Please make sure that Bluetooth is On in the Bluetooth pane in System Preferences.",
       "Please make sure that Bluetooth is On in your desktop’s Bluetooth settings."},
      {"To find the address, go to System Preferences ‣ Bluetooth and make sure that “Show Bluetooth in menu bar” is "
       "checked. Then Option-click the macOS Bluetooth menu at the top of the screen and look for the address under "
       "the device.",
       "To find the address, look at the device’s details in your desktop’s Bluetooth settings, or run "
       "“bluetoothctl devices Paired” in a terminal."},
      {"Select the Bluetooth device that you want to add to the menu bar:",
       "Select the Bluetooth device that you want to add to the tray:"},
      // Linux needs no permission for the scripts folder; these only show
      // where a platform asks for one.
      {"Please select the User > Library > Application Scripts folder to save the scripts.",
       "Please select the folder that holds Lanternbud’s scripts folder."},
      {"Please select the User > Library > Application Scripts > ", "Please select the scripts folder "},
      {" folder to save the scripts.", " to save the scripts."},
  };
  auto found = linux.find(english);
  return std::string(found == linux.end() ? english : found->second);
}

std::string localized(std::string_view english, std::nullptr_t, int count) {
  std::optional<std::string> text;
  if (auto translator = installedTranslator.load(std::memory_order_acquire)) text = translator(english, count);
  if (!text) {
    // English has one form for one and another for the rest.
    static const std::map<std::string_view, std::string_view> singular{
        {"about %n hours left", "about %n hour left"},
        {"about %n minutes left", "about %n minute left"},
    };
    const auto found = singular.find(english);
    text = std::string(count == 1 && found != singular.end() ? found->second : english);
  }
  if (const auto at = text->find("%n"); at != std::string::npos) text->replace(at, 2, std::to_string(count));
  return *text;
}

std::string numbered(std::string_view format, std::initializer_list<std::string_view> arguments) {
  std::string text;
  for (std::size_t i = 0; i < format.size(); ++i) {
    const char next = i + 1 < format.size() ? format[i + 1] : '\0';
    const auto index = std::size_t(next - '1');
    if (format[i] == '%' && next == '%') {
      text += '%';
      ++i;
    } else if (format[i] == '%' && next >= '1' && next <= '9' && index < arguments.size()) {
      text += *(arguments.begin() + index);
      ++i;
    } else {
      text += format[i];
    }
  }
  return text;
}

std::string formatted(std::string_view format, std::string_view argument) {
  std::string text;
  bool filled = false;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] == '%' && i + 1 < format.size() && format[i + 1] == '%') {
      text += '%';
      ++i;
    } else if (!filled && format[i] == '%' && i + 1 < format.size() && format[i + 1] == '@') {
      text += argument;
      filled = true;
      ++i;
    } else {
      text += format[i];
    }
  }
  return text;
}

} // namespace lb
