// The token scanner: SQL text in, tokens out, as views of the source.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace lumora {

enum TTokenKind : std::uint8_t {
    tkEnd,
    tkIdentifier,
    tkQuotedIdentifier, // between double quotes, which belong to the token's text
    tkNumber,
    tkString,  // between single quotes, which belong to the token's text; a doubled one stands for one
    tkSymbol,  // one character, or one of <> != >= <= ||
    tkUnclosed // a string, quoted identifier or comment that the text does not end
};

struct TToken {
    TTokenKind Kind = tkEnd;
    std::string_view Text; // as it stands in the source
    int Line = 1;          // where it begins, from 1

    bool IsSymbol(char symbol) const { return Kind == tkSymbol && Text.size() == 1 && Text[0] == symbol; }
    bool IsName() const { return Kind == tkIdentifier || Kind == tkQuotedIdentifier; }
    // A name without its double quotes (doubled ones inside stay doubled).
    std::string_view Name() const;
};

namespace detail {

enum TCharClass : std::uint8_t { ccOther, ccBlank, ccQuote, ccName, ccDigit };

constexpr std::array<TCharClass, 256> MakeCharClasses() {
    std::array<TCharClass, 256> classes{};
    for (unsigned c = 0; c < 256; ++c) {
        if (c <= ' ')
            classes[c] = ccBlank;
        else if (c >= '0' && c <= '9')
            classes[c] = ccDigit;
        else if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$' || c == '#' ||
                 c == '@' || c >= 128)
            classes[c] = ccName;
        else if (c == '\'' || c == '"')
            classes[c] = ccQuote;
    }
    return classes;
}

inline constexpr std::array<TCharClass, 256> CharClasses = MakeCharClasses();

inline TCharClass ClassOf(char c) {
    return CharClasses[static_cast<unsigned char>(c)];
}

} // namespace detail

// Blanks, line breaks, "--" to the end of the line and "/* */" stand between tokens. The source must outlive
// it.
class TVScanner {
public:
    explicit TVScanner(std::string_view source) : at_(source.data()), end_(source.data() + source.size()) {
        Next();
    }

    const TToken& Token() const { return token_; }
    bool AtEnd() const { return token_.Kind == tkEnd; }
    // Names, which most tokens are, are read here; the rest is not worth the room.
    const TToken& Next() {
        while (at_ != end_ && detail::ClassOf(*at_) == detail::ccBlank)
            line_ += *at_++ == '\n';
        const char* const start = at_;
        if (at_ == end_ || detail::ClassOf(*at_) != detail::ccName)
            return NextOther();
        do
            ++at_;
        while (at_ != end_ && detail::ClassOf(*at_) >= detail::ccName);
        token_.Kind = tkIdentifier;
        token_.Text = {start, static_cast<std::size_t>(at_ - start)};
        token_.Line = line_;
        return token_;
    }

private:
    const TToken& NextOther();
    bool SkipComment();
    TTokenKind ScanQuoted();
    void ScanNumber();
    char Peek(std::ptrdiff_t offset) const { return end_ - at_ > offset ? at_[offset] : '\0'; }

    const char* at_;
    const char* end_;
    int line_ = 1;
    TToken token_;
};

} // namespace lumora
