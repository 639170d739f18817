#pragma once

#include "foundation/Translatable.h"

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace lb {

// The text the user sees for `english`, which is the lookup key: its
// translation into the user's language when one is installed, else the
// English. On Linux a few English texts read differently where they name
// places that do not exist here.
std::string localized(std::string_view english);

// `english` with "%n" as `count`, in the plural form that the user's
// language takes for it ("about %n hours left"). The middle argument is
// null, as in Qt's tr(), so that the translators' tools see a text with
// plural forms.
std::string localized(std::string_view english, std::nullptr_t, int count);

// `format` with its first "%@" replaced by `argument`, and "%%" as "%".
std::string formatted(std::string_view format, std::string_view argument);

// `format` with "%1" … "%9" replaced by the arguments in that order, and
// "%%" as "%": for a text of several arguments, which a translation may
// reorder.
std::string numbered(std::string_view format, std::initializer_list<std::string_view> arguments);

// A text that is both logged and shown: in English for the log, in the
// user's language for the user. `english` is a text for localized(),
// written with translatable() so that the translators' tools find it, with
// "%@" where `argument` goes.
struct Wording {
  Wording(std::string_view text, std::string filling = {}) : english(text), argument(std::move(filling)) {}

  std::string_view english;
  std::string argument;

  std::string inEnglish() const { return formatted(english, argument); }
  std::string shown() const { return formatted(localized(english), argument); }
};

// The translation of `english` into the user's language, or nothing when
// it has none; for a text with plural forms, the form for `count` (-1 for
// any other text), with its "%n" left in.
using Translator = std::optional<std::string> (*)(std::string_view english, int count);

// Installed by the program once at start, before other threads run; any
// thread may make texts from then on. Null goes back to English.
void installTranslator(Translator translator);

} // namespace lb
