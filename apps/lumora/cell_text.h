// Values of a database as text.
#pragma once

#include <QString>
#include <QVariant>

#include <string>

namespace lumora::cli {

bool isNumber(const QVariant& value);

// A number to 15 digits, or with `exact` to as many as it takes to read the same number again; bytes in
// hexadecimal; dates and times as ISO 8601 has them; NULL as an empty text. "." in every locale.
QString cellText(const QVariant& value, bool exact);

// The text between double quotes, as JSON has it, in UTF-8.
std::string jsonString(const QString& text);
// NULL as null, numbers and booleans as such, everything else as a string.
std::string jsonValue(const QVariant& value);

} // namespace lumora::cli
