#pragma once

#include <QString>
#include <QVariant>

namespace lb {

// A D-Bus value as readable text: numbers and strings as they are, arrays
// as [a, b], dictionaries as {key: value}, byte arrays in hexadecimal.
QString dbusText(const QVariant& value);

} // namespace lb
