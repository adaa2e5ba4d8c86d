// Values of a database as text.
#pragma once

#include <QString>
#include <QVariant>

#include <string>
#include <string_view>

namespace lumora {

bool isNumber(const QVariant& value);
// Whether the value is a decimal number that came as text, digit by digit.
bool isDecimal(const QVariant& value);

// A number to 15 digits; bytes in hexadecimal; dates and times as ISO 8601 has them; NULL as an empty text.
// "." in every locale.
QString cellText(const QVariant& value);

// Both add to a line in UTF-8, and write numbers with as many digits as it takes to read the same number
// again.
void appendCell(std::string& line, const QVariant& value);
// NULL as null, booleans and numbers as such, everything else as a string. A text may be a number if
// `mayBeDecimal`.
void appendJson(std::string& line, const QVariant& value, bool mayBeDecimal);

// Adds a field of a CSV line (RFC 4180) to it. NULL is nothing, an empty text is nothing in quotes.
void appendCsvField(std::string& line, const QVariant& value);

// The UTF-8 text between double quotes, as JSON has it.
void appendJsonString(std::string& line, std::string_view text);

} // namespace lumora
