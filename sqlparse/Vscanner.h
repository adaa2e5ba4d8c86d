// The token scanner: SQL text in, tokens out, as views of the source.
#pragma once

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

// Blanks, line breaks, "--" to the end of the line and "/* */" stand between tokens. The source must outlive
// it.
class TVScanner {
public:
    explicit TVScanner(std::string_view source) : source_(source) { Next(); }

    const TToken& Token() const { return token_; }
    bool AtEnd() const { return token_.Kind == tkEnd; }
    const TToken& Next();

private:
    bool SkipBlanks();
    TTokenKind ScanToken();
    TTokenKind ScanQuoted(char quote, TTokenKind kind);
    void ScanNumber();
    char At(std::size_t position) const { return position < source_.size() ? source_[position] : '\0'; }

    std::string_view source_;
    std::size_t position_ = 0;
    int line_ = 1;
    TToken token_;
};

} // namespace lumora
