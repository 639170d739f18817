#pragma once

#include "foundation/Printing.h"

#include <concepts>
#include <optional>
#include <source_location>
#include <string>

namespace lb {

// A switchable log area. Lines are written only while the shared logger has
// the area switched on, and their text is built only then. Errors go to
// the area-less error channel, always written.
//
//   connectLog()([&] { return "Connecting " + name; });  // deferred text
//   PXR_LOG(connectLog(), "Connecting", name, count);    // items joined by " "
//   PXR_LOG_ERROR("Cannot connect", name, reason);       // the one way to log an error
class PXRLog {
public:
  explicit PXRLog(std::optional<std::string> area, bool disabled = false)
      : area_(std::move(area)), disabled_(disabled) {}

  // The area-less error channel.
  static const PXRLog& error();

  const std::optional<std::string>& area() const { return area_; }
  bool isEnabled() const;

  // Writes the deferred message if the area is on; it is evaluated at most
  // once, after the check.
  template <std::invocable Message>
  void operator()(Message&& message, std::source_location site = std::source_location::current()) const {
    if (isEnabled()) write(std::string(message()), site);
  }

  // Writes a message already built, without asking whether the area is on.
  void write(std::string message, std::source_location site = std::source_location::current()) const;

private:
  std::optional<std::string> area_;
  bool disabled_;
};

} // namespace lb

// Items are evaluated only when the area is on, in order, and joined by " ".
#define PXR_LOG(area, ...)                                                                        \
  do {                                                                                            \
    const ::lb::PXRLog& pxrLogArea_ = (area);                                                     \
    if (pxrLogArea_.isEnabled()) pxrLogArea_.write(::lb::pxrPrintingOptionals(" ", __VA_ARGS__)); \
  } while (0)

// Writes to the error channel, whatever the areas say; items as PXR_LOG's.
#define PXR_LOG_ERROR(...) ::lb::PXRLog::error().write(::lb::pxrPrintingOptionals(" ", __VA_ARGS__))
