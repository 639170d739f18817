#pragma once

#include "ports/Windows.h"

#include <memory>

namespace lb {

class AppDelegate;
class DiagnosticReporter;
class PreferencesWindow;
struct Services;

// The program's windows: the preferences window where there is a display,
// the welcome message from a tray item, and the end of the event loop.
class DesktopWindows final : public Windows {
public:
  // Without a display the preferences cannot open; the log says what to use
  // instead.
  explicit DesktopWindows(bool display);
  ~DesktopWindows() override;

  // What the window shows and changes; before its first showing.
  void attach(AppDelegate& app, Services& services, DiagnosticReporter& reporter);
  // Closes the window for good: before the registry it shows goes.
  void detach();

  bool showPreferences(std::optional<std::int64_t> deviceID) override;
  // The welcome is a message from the first item, which most trays show as
  // a desktop notification.
  bool showLandingPopover(StatusItem& item) override;
  void setActivationPolicy(ActivationPolicy) override {}
  void terminate() override;

  PreferencesWindow* preferencesWindow() const { return window_.get(); }

private:
  const bool display_;
  AppDelegate* app_ = nullptr;
  Services* services_ = nullptr;
  DiagnosticReporter* reporter_ = nullptr;
  std::unique_ptr<PreferencesWindow> window_;
};

} // namespace lb
