#include "lumora/support/string_helpers.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/convert.h"

#include <limits>

namespace lumora {

int XStrToInt(std::string_view text, int defaultValue) {
    text = Trim(text);
    std::size_t i = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    const bool negative = i == 1 && text[0] == '-';
    if (i >= text.size() || !IsDigit(text[i]))
        return defaultValue;
    long long value = 0;
    for (; i < text.size() && IsDigit(text[i]); ++i) {
        value = value * 10 + (text[i] - '0');
        if (value > std::numeric_limits<int>::max())
            return negative ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    }
    return static_cast<int>(negative ? -value : value);
}

double XStrToFloat(std::string_view text, double defaultValue) {
    return TryStrToFloat(Trim(text)).value_or(defaultValue);
}

bool XStrToBool(std::string_view text) {
    text = Trim(text);
    return XStrToInt(text) != 0 || SameText(text, "true") || SameText(text, "yes") || SameText(text, "y") ||
           SameText(text, "t");
}

std::vector<std::string_view> SplitText(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    if (text.empty())
        return pieces;
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find(separator, start);
        pieces.push_back(text.substr(start, end - start));
        if (end == std::string_view::npos)
            return pieces;
        start = end + 1;
    }
}

namespace {

template <typename TFind>
std::string ReplaceFound(std::string_view text, std::string_view from, std::string_view to, TFind find) {
    std::string result;
    std::size_t start = 0;
    if (!from.empty())
        for (std::size_t at; (at = find(text, from, start)) != std::string_view::npos;
             start = at + from.size())
            result.append(text, start, at - start).append(to);
    return result.append(text, start);
}

} // namespace

std::string ReplaceText(std::string_view text, std::string_view from, std::string_view to) {
    return ReplaceFound(text, from, to, [](std::string_view in, std::string_view part, std::size_t start) {
        return in.find(part, start);
    });
}

std::string ReplaceTextNoCase(std::string_view text, std::string_view from, std::string_view to) {
    return ReplaceFound(text, from, to, [](std::string_view in, std::string_view part, std::size_t start) {
        return FindNoCase(in, part, start);
    });
}

void AppendDoubled(std::string& out, std::string_view text, char quote) {
    for (std::size_t start = 0;;) {
        const std::size_t at = text.find(quote, start);
        if (at == std::string_view::npos) {
            out.append(text, start);
            return;
        }
        out.append(text, start, at + 1 - start) += quote;
        start = at + 1;
    }
}

std::string QuoteText(std::string_view text, char openQuote, char closeQuote) {
    std::string quoted(1, openQuote);
    AppendDoubled(quoted, text, closeQuote);
    return quoted += closeQuote;
}

void AppendFoldedBlanks(std::string& out, std::string_view text) {
    for (const char c : text)
        if (!IsBlank(c))
            out += LowerAscii(c);
}

std::string FoldBlanks(std::string_view text) {
    std::string folded;
    AppendFoldedBlanks(folded, text);
    return folded;
}

bool IsWordChar(char c) {
    const char lower = LowerAscii(c);
    return (lower >= 'a' && lower <= 'z') || IsDigit(c) || c == '_' || static_cast<unsigned char>(c) >= 128;
}

std::size_t FindWholeWord(std::string_view text, std::string_view word, std::size_t from) {
    if (word.empty())
        return std::string_view::npos;
    for (std::size_t at = text.find(word, from); at != std::string_view::npos; at = text.find(word, at + 1)) {
        const std::size_t end = at + word.size();
        const bool startsInside = at > 0 && IsWordChar(text[at - 1]) && IsWordChar(word.front());
        const bool endsInside = end < text.size() && IsWordChar(text[end]) && IsWordChar(word.back());
        if (!startsInside && !endsInside)
            return at;
    }
    return std::string_view::npos;
}

} // namespace lumora
