// The tokens of one statement, all of them, with what a parser wants to know of each before it comes to it.
#pragma once

#include "lumora/sqlparse/Vscanner.h"
#include "lumora/sqlparse/sql_words.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace lumora {

enum TSQLTokenRole : std::uint8_t {
    trComparison = 1, // an operator that compares
    trEndsValue = 2,  // ends a condition's value: a comparison, "and", "or", a clause, "," ")" or the end
    trEndsLeft = 4,   // ends a left side besides: "not"
    trJoinWord = 8,   // ends a value unless it is a function's name
    trClause = 16,    // a clause, supported or not, begins with it, or it is ";"
    trOpens = 32,     // "(" and CASE
    trCloses = 64,    // ")" and END
    trGroup = 128     // a "(" with a comparison inside, which is not a sub-select's own
};

struct TSQLToken {
    const char* Begin;
    std::uint32_t Length;
    std::int32_t Line;
    std::int32_t Match;    // for "(" and CASE the token that closes it, -1 when there is none
    std::int32_t WideGaps; // before it and all tokens before it: gaps that are more than one blank
    TTokenKind Kind;
    char Symbol;   // of a symbol of one character, else 0
    TSQLWord Word; // a name behind "." is no word
    std::uint8_t Roles;

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
    void Read(std::string_view source);
    // The last one is the end.
    const TSQLToken* begin() const { return items_; }
    const TSQLToken* Last() const { return items_ + count_ - 1; }

private:
    // So many stand in the object itself, so that a short statement allocates nothing.
    static constexpr std::size_t FirstCapacity = 48;

    void Grow(std::size_t capacity);
    void Pair(TSQLToken& token);
    void Open(TSQLToken& token);
    void Close(const TSQLToken& token);
    void LeaveInnermost(std::int32_t match);

    TSQLToken* items_ = first_;
    std::size_t count_ = 0;
    std::size_t capacity_ = FirstCapacity;
    std::unique_ptr<TSQLToken[]> more_;
    std::int32_t innermost_ = -1; // what is open; its Match is what is open around it until it is closed
    int depth_ = 0;
    TSQLToken first_[FirstCapacity];
};

} // namespace lumora
