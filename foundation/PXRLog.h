#pragma once

#include "foundation/Printing.h"

#include <concepts>
#include <optional>
#include <source_location>
#include <string>

namespace lb {

// A switchable log area. Lines are written only while the shared logger has
// the area switched on, and their text is built only then.
//
//   connectLog([&] { return "Connecting " + name; });   // deferred text
//   PXR_LOG(connectLog, "Connecting", name, count);      // items joined by " "
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

// Writes to the error channel, whatever the areas say.
void pxrLogError(std::string message, std::source_location site = std::source_location::current());

} // namespace lb

// Items are evaluated only when the area is on, in order, and joined by " ".
#define PXR_LOG(area, ...)                                                                        \
  do {                                                                                            \
    const ::lb::PXRLog& pxrLogArea_ = (area);                                                     \
    if (pxrLogArea_.isEnabled()) pxrLogArea_.write(::lb::pxrPrintingOptionals(" ", __VA_ARGS__)); \
  } while (0)

#define PXR_LOG_ERROR(...) ::lb::pxrLogError(::lb::pxrPrintingOptionals(" ", __VA_ARGS__))
