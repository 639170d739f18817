#pragma once

#include "core/Texts.h"

#include <QString>

#include <string_view>

namespace lb {

// A text the user sees, through the program's one lookup.
inline QString uiText(std::string_view english) { return QString::fromStdString(localized(english)); }

} // namespace lb
