#include "app/Translations.h"

#include "core/LogAreas.h"
#include "core/Texts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace lb {

namespace {

// Kept for the program's life: workers read it through the lookup.
QTranslator& ownTexts() {
  static QTranslator translator;
  return translator;
}

// The texts are looked up by their English alone: one context holds them all.
std::optional<std::string> translation(std::string_view english, int count) {
  const auto translated = ownTexts().translate("Lanternbud", std::string(english).c_str(), nullptr, count);
  if (translated.isNull()) return std::nullopt;
  return translated.toStdString();
}

} // namespace

void installTranslations() {
  if (!ownTexts().load(QLocale(), "lanternbud", "_", ":/i18n")) {
    PXR_LOG(launchLog(), "Texts in English");
    return;
  }
  installTranslator(&translation);
  const auto language = ownTexts().language();
  static QTranslator qtTexts;
  if (qtTexts.load("qtbase_" + language, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QCoreApplication::installTranslator(&qtTexts);
    PXR_LOG(launchLog(), "Texts in", language.toStdString());
  } else {
    PXR_LOG(launchLog(), "Texts in", language.toStdString() + "; Qt's own stay English");
  }
}

} // namespace lb
