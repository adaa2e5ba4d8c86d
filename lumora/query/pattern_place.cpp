#include "lumora/query/pattern_place.h"

#include "lumora/platform/ascii.h"
#include "lumora/statement/dialects/dialect.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

bool IsWordChar(char c) {
    const char lower = LowerAscii(c);
    return (lower >= 'a' && lower <= 'z') || IsDigit(c) || c == '_';
}

void TrimEnd(std::string_view& text) {
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
}

// Takes the word off the end of a text.
std::string_view TakeLastWord(std::string_view& text) {
    TrimEnd(text);
    std::size_t start = text.size();
    while (start > 0 && IsWordChar(text[start - 1]))
        --start;
    const std::string_view word = text.substr(start);
    text.remove_suffix(word.size());
    return word;
}

// How many calls of functions stand open between LIKE and the end of the text; nothing when there is no LIKE.
std::optional<int> CallsBehindLike(std::string_view text) {
    for (int calls = 0;; ++calls) {
        std::string_view rest = text;
        const std::string_view word = TakeLastWord(rest);
        if (SameText(word, "like") || SameText(word, "ilike"))
            return calls;
        if (!word.empty() || rest.empty() || rest.back() != '(')
            return std::nullopt; // another quote, as in N'...', or no call
        rest.remove_suffix(1);
        if (TakeLastWord(rest).empty())
            return std::nullopt;
        text = rest;
    }
}

// The length of the brackets that close the calls; nothing when other text stands there.
std::optional<std::size_t> LengthOfEnd(std::string_view text, int calls) {
    std::size_t at = 0;
    for (; calls > 0; --calls) {
        while (at < text.size() && IsBlank(text[at]))
            ++at;
        if (at == text.size() || text[at++] != ')')
            return std::nullopt;
    }
    return at;
}

bool EndsCondition(std::string_view text) {
    text = Trim(text);
    const auto begins = [text](std::string_view word) {
        return SameText(text.substr(0, word.size()), word) &&
               (text.size() == word.size() || !IsWordChar(text[word.size()]));
    };
    return text.empty() || text[0] == ')' || begins("and") || begins("or");
}

// The length of the clause that the text begins with, whatever its blanks and letter case; 0 for none.
std::size_t LengthOfClause(std::string_view text, std::string_view clause) {
    const std::string folded = FoldBlanks(clause);
    std::size_t matched = 0, at = 0;
    for (; at < text.size() && matched < folded.size(); ++at)
        if (!IsBlank(text[at]) && LowerAscii(text[at]) != folded[matched++])
            return 0;
    return matched == folded.size() ? at : 0;
}

} // namespace

std::optional<TPatternPlace> FindPatternPlace(std::string_view before, std::string_view behind,
                                              const TDialect& dialect) {
    const std::size_t open = before.rfind('\''), close = behind.find('\'');
    if (open == std::string_view::npos || close == std::string_view::npos || dialect.PatternClause.empty())
        return std::nullopt;
    const std::optional<int> calls = CallsBehindLike(before.substr(0, open));
    const std::string_view rest = behind.substr(close + 1);
    const std::optional<std::size_t> end = calls ? LengthOfEnd(rest, *calls) : std::nullopt;
    if (!end)
        return std::nullopt;
    const std::size_t clause = LengthOfClause(rest.substr(*end), dialect.PatternClause);
    TPatternPlace place{before.substr(open + 1), behind.substr(0, close), close + 1 + *end + clause,
                        clause > 0};
    const bool isWhole = place.Before.empty() && place.After.empty();
    if (!EndsCondition(behind.substr(place.Length)) || (isWhole && !place.HasClause))
        return std::nullopt;
    return place;
}

bool HasWildcards(std::string_view text) {
    return text.find_first_of("%_\\") != std::string_view::npos;
}

namespace {

std::optional<std::string> UnescapePattern(std::string_view pattern, const TDialect& dialect) {
    std::string text;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const bool isEscaped = pattern[i] == dialect.PatternEscape && i + 1 < pattern.size();
        i += isEscaped ? 1 : 0;
        if (!isEscaped && dialect.PatternSpecial.find(pattern[i]) != std::string_view::npos)
            return std::nullopt;
        text += pattern[i];
    }
    return text;
}

} // namespace

std::string_view WithoutPatternClause(std::string_view text, const TDialect& dialect) {
    std::size_t at = text.size();
    for (int blanks = 0; blanks < 3 && at != std::string_view::npos && at > 0; ++blanks) {
        at = text.rfind(' ', at - 1);
        if (at != std::string_view::npos &&
            LengthOfClause(text.substr(at), dialect.PatternClause) == text.size() - at)
            return Trim(text.substr(0, at));
    }
    return text;
}

std::optional<std::string> TextOfPattern(std::string_view sqlTemplate, int value, std::string_view text,
                                         bool hasClause, const TDialect& dialect) {
    const std::string placeholder = "@" + std::to_string(value);
    const std::size_t at = sqlTemplate.find(placeholder);
    const std::optional<TPatternPlace> place =
        at == std::string_view::npos ? std::nullopt
                                     : FindPatternPlace(sqlTemplate.substr(0, at),
                                                        sqlTemplate.substr(at + placeholder.size()), dialect);
    if (place && hasClause)
        return UnescapePattern(text, dialect);
    return place && HasWildcards(text) ? std::nullopt : std::optional(std::string(text));
}

} // namespace lumora
