// Patterns with wildcards, matched against texts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TFilterPattern {
public:
    TFilterPattern() = default; // matches the empty text
    // "*" stands for any text.
    static TFilterPattern OfFilter(std::string_view text, bool caseInsensitive);
    // "%" stands for any text, "_" for one character; behind the escape character (none: 0) each stands for
    // itself.
    static TFilterPattern OfLike(std::string_view text, char escape, bool caseInsensitive);

    // Takes at most the product of both lengths, for most patterns the length of the text.
    bool Matches(std::string_view text) const;

private:
    enum TElement : std::uint8_t { elByte, elOne, elAny };

    void Add(TElement element, char byte);
    bool MatchesAt(std::size_t element, char c) const;

    std::vector<TElement> elements_;
    std::string bytes_; // of each element
    bool caseInsensitive_ = false;
};

} // namespace lumora
