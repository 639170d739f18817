#pragma once

namespace lb {

// Puts the program in the user's language, as the locale says (LANGUAGE,
// LC_ALL, LC_MESSAGES, LANG): Lanternbud's own texts, which every lookup of
// core's localized() reads, and Qt's for the same language (standard
// buttons, key names). Without a translation the texts stay English.
// Once, with the application made and before other threads run.
void installTranslations();

} // namespace lb
