// Small helpers over texts, and readers of numbers that never fail.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

// The first of the numbers or words that the text begins with; the default when it begins with none.
int XStrToInt(std::string_view text, int defaultValue = 0);
double XStrToFloat(std::string_view text, double defaultValue = 0);
// True for a non-zero number, "true", "yes", "y" and "t"; letter case ignored.
bool XStrToBool(std::string_view text);

// The pieces between separators; an empty text has none.
std::vector<std::string_view> SplitText(std::string_view text, char separator);
std::string ReplaceText(std::string_view text, std::string_view from, std::string_view to);
std::string ReplaceTextNoCase(std::string_view text, std::string_view from, std::string_view to);
// The text between two quotes, the closing one doubled inside.
std::string QuoteText(std::string_view text, char openQuote, char closeQuote);
void AppendDoubled(std::string& out, std::string_view text, char quote);
// The text with all blanks removed and letters lower-cased: two texts that differ only in these give the
// same.
std::string FoldBlanks(std::string_view text);
void AppendFoldedBlanks(std::string& out, std::string_view text);
// A letter, a digit, "_" or a part of a character beyond ASCII.
bool IsWordChar(char c);
// Position of `word` in `text` where no letter, digit or "_" touches it; npos when absent. Both as they
// stand.
std::size_t FindWholeWord(std::string_view text, std::string_view word, std::size_t from = 0);

} // namespace lumora
