// Values that stand in a pattern of LIKE, where they are meant as they are.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace lumora {

struct TDialect;

// The place of a value in a template's pattern: "like '%@1%' escape '!'".
struct TPatternPlace {
    std::string_view Before; // in the same quotes, before the value and behind it
    std::string_view After;
    std::size_t Length = 0; // of the text behind the value that ends with the pattern, functions around it
                            // included, or with its clause
    bool HasClause = false;
};

// The place of a value between two pieces of its template. Nothing where no LIKE stands before its quotes,
// where another escape clause rules, and where the value alone is the pattern, wildcards and all.
std::optional<TPatternPlace> FindPatternPlace(std::string_view before, std::string_view behind,
                                              const TDialect& dialect);

// Whether a pattern takes a character of the text for something else when no clause says otherwise.
bool HasWildcards(std::string_view text);
// A pattern as a statement has it, without the dialect's clause at its end.
std::string_view WithoutPatternClause(std::string_view text, const TDialect& dialect);
// The value that a text of a statement is where value `value` stands in the template: what a pattern finds,
// or the text itself elsewhere. `hasClause`: the statement has the dialect's. Nothing for a pattern that
// finds other texts too.
std::optional<std::string> TextOfPattern(std::string_view sqlTemplate, int value, std::string_view text,
                                         bool hasClause, const TDialect& dialect);

} // namespace lumora
