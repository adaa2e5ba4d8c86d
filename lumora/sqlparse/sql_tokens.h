// The tokens of one statement, all of them, with what a parser wants to know of each before it comes to it.
#pragma once

#include "lumora/sqlparse/Vscanner.h"
#include "lumora/sqlparse/sql_words.h"
#include "lumora/support/text_place.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace lumora {

enum TSQLTokenRole : std::uint16_t {
    trComparison = 1, // an operator that compares
    trEndsValue = 2,  // ends a condition's value: a comparison, "and", "or", a clause, "," ")" or the end
    trEndsLeft = 4,   // ends a left side besides: "not"
    trJoinWord = 8,   // ends a value unless it is a function's name
    trClause = 16,    // a clause, supported or not, begins with it, or it is ";"
    trOpens = 32,     // "(" and CASE
    trCloses = 64,    // ")" and END
    trGroup = 128,    // a "(" with a comparison inside, which is not a sub-select's own
    trClosed = 256,   // what it opens is closed
    trStrictOp = 512  // an operator that a strict parser knows
};

struct TSQLToken {
    const char* Begin;
    std::uint32_t Length;
    std::int32_t Line;
    std::int32_t Step;     // to the next token, or past what it opens; an open "(" reaches to the end
    std::int32_t WideGaps; // before it and all tokens before it: gaps that are more than one blank
    TTokenKind Kind;
    char Symbol;   // of a symbol of one character, else 0
    TSQLWord Word; // a name behind "." is no word
    std::uint16_t Roles;

    const char* End() const { return Begin + Length; }
    std::string_view Text() const { return {Begin, Length}; }
};

class TSQLTokens {
public:
    TSQLTokens() = default;
    TSQLTokens(const TSQLTokens&) = delete;
    TSQLTokens& operator=(const TSQLTokens&) = delete;

    // Reads them all, which are views of the source. ESQLParserError for a token that is not closed and for
    // parentheses that nest too deep.
    // `quotedNames`: `name` and [name] are quoted names too.
    void Read(std::string_view source, bool quotedNames = false);
    // The last one is the end.
    const TSQLToken* begin() const { return items_ + 1; }

private:
    // So many stand in the object itself, so that a short statement allocates nothing.
    static constexpr std::size_t FirstCapacity = 48;

    TTextPlace PlaceOf(const TSQLToken& token) const;
    void Start(std::string_view source);
    TSQLToken& Add(const TToken& scanned, std::int32_t wideGaps);
    void Finish(const TToken& end);
    void Grow(std::size_t capacity);
    void Pair(TSQLToken& token);
    void Open(TSQLToken& token);
    void Close(const TSQLToken& token);
    TSQLToken& LeaveInnermost();

    TSQLToken* items_ = first_; // the first stands for what is outside all parentheses
    std::string_view source_;
    std::size_t count_ = 0;
    std::size_t capacity_ = FirstCapacity;
    std::unique_ptr<TSQLToken[]> more_;
    std::int32_t innermost_ = 0; // what is open; its Step is what is open around it
    int depth_ = 0;
    TSQLToken first_[FirstCapacity];
};

} // namespace lumora
