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

enum TCharClass : std::uint8_t {
    ccOther, // may begin a token of several characters, or a comment
    ccBlank,
    ccSymbol, // stands alone
    ccName,
    ccDigit // goes on with a name too
};

constexpr TCharClass ClassifyChar(unsigned c) {
    const unsigned letter = (c | 0x20) - 'a';
    if (c <= ' ')
        return ccBlank;
    if (c >= '0' && c <= '9')
        return ccDigit;
    if (letter < 26 || c == '_' || c == '$' || c == '#' || c == '@' || c >= 128)
        return ccName;
    for (const char other : {'\'', '"', '-', '/', '<', '>', '!', '|'})
        if (c == static_cast<unsigned>(other))
            return ccOther;
    return ccSymbol;
}

constexpr std::array<TCharClass, 256> MakeCharClasses() {
    std::array<TCharClass, 256> classes{};
    for (unsigned c = 0; c < 256; ++c)
        classes[c] = ClassifyChar(c);
    return classes;
}

inline constexpr std::array<TCharClass, 256> CharClasses = MakeCharClasses();

inline TCharClass ClassOf(char c) {
    return CharClasses[static_cast<unsigned char>(c)];
}

// The end of a run of names' characters (ccName) or digits (ccDigit). A step for each of the first
// characters, since the processor foretells each by itself: how long a name is, is what it is worst at.
inline const char* EndOfRun(const char* at, const char* end, TCharClass least) {
    for (; end - at >= 4; at += 4) {
        if (ClassOf(at[0]) < least)
            return at;
        if (ClassOf(at[1]) < least)
            return at + 1;
        if (ClassOf(at[2]) < least)
            return at + 2;
        if (ClassOf(at[3]) < least)
            return at + 3;
    }
    while (at != end && ClassOf(*at) >= least)
        ++at;
    return at;
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
    // Where the present token is "`" or "[", and what it opens is closed: makes it a quoted name.
    void TakeQuotedName();
    // Names, plain symbols and whole numbers, which most tokens are, are read here; the rest is not worth the
    // room.
    const TToken& Next() {
        const char* at = at_;
        while (at != end_ && detail::ClassOf(*at) == detail::ccBlank)
            line_ += *at++ == '\n';
        const char* const start = at;
        const detail::TCharClass first = at != end_ ? detail::ClassOf(*at) : detail::ccOther;
        at_ = at;
        if (first == detail::ccOther)
            return NextOther();
        ++at;
        if (first == detail::ccName) {
            token_.Kind = tkIdentifier;
            at = detail::EndOfRun(at, end_, detail::ccName);
        } else if (first == detail::ccSymbol) {
            token_.Kind = tkSymbol;
        } else {
            token_.Kind = tkNumber;
            at = detail::EndOfRun(at, end_, detail::ccDigit);
            if (at != end_ && (*at == '.' || *at == 'e' || *at == 'E'))
                at = EndOfFraction(at);
        }
        at_ = at;
        token_.Text = {start, static_cast<std::size_t>(at - start)};
        token_.Line = line_;
        return token_;
    }

private:
    const TToken& NextOther();
    bool SkipComment();
    TTokenKind ScanQuoted();
    const char* EndOfFraction(const char* at) const;
    char Peek(std::ptrdiff_t offset) const { return end_ - at_ > offset ? at_[offset] : '\0'; }

    const char* at_;
    const char* end_;
    int line_ = 1;
    TToken token_;
};

} // namespace lumora
