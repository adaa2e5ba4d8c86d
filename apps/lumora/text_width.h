// Text in the columns of a terminal.
#pragma once

#include <QString>

#include <string>

namespace lumora::cli {

// How many columns the text takes: two for wide characters, none for marks that join the one before.
int displayWidth(const QString& text);

// The text as one line of UTF-8 in which nothing steers a terminal: control characters, line breaks and marks
// that turn the direction of writing stand as escapes ("\n", "\u202e").
QString visibleLine(const QString& text);

} // namespace lumora::cli
