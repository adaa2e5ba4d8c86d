#include "lumora/sqlparse/sql_tokens.h"

#include "lumora/sqlparse/parser_error.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace lumora {

namespace {

constexpr std::uint8_t RolesOf(TSQLWord word) {
    switch (word) {
    case swLike:
    case swIn:
    case swIs:
    case swBetween:
        return trComparison | trEndsValue;
    case swAnd:
    case swOr:
        return trEndsValue;
    case swNot:
        return trEndsLeft;
    case swJoin:
    case swInner:
    case swLeft:
    case swRight:
    case swFull:
        return trJoinWord;
    case swCase:
        return trOpens;
    case swEnd:
        return trCloses;
    default:
        return BeginsClause(word) ? trEndsValue | trClause : 0;
    }
}

constexpr std::uint8_t RolesOf(char symbol) {
    switch (symbol) {
    case '=':
    case '<':
    case '>':
        return trComparison | trEndsValue;
    case '(':
        return trOpens;
    case ')':
        return trEndsValue | trCloses;
    case ',':
        return trEndsValue;
    case ';':
        return trEndsValue | trClause;
    default:
        return 0;
    }
}

template <typename TKey, std::size_t Count>
constexpr std::array<std::uint8_t, Count> MakeRoles() {
    std::array<std::uint8_t, Count> roles{};
    for (std::size_t i = 0; i < Count; ++i)
        roles[i] = RolesOf(static_cast<TKey>(i));
    return roles;
}

constexpr auto RolesOfWord = MakeRoles<TSQLWord, SQLWordCount>();
constexpr auto RolesOfSymbol = MakeRoles<char, 128>();

void ClassifySymbol(TSQLToken& token) {
    const char first = *token.Begin;
    if (token.Length == 1)
        token.Symbol = first;
    // "!" by itself compares nothing
    token.Roles = RolesOfSymbol[static_cast<unsigned char>(token.Length == 2 && first == '!' ? '=' : first)];
}

void ClassifyName(TSQLToken& token, std::string_view source) {
    token.Word = SQLWordWithin(token.Text(), source.data() + source.size());
    token.Roles = RolesOfWord[token.Word];
}

} // namespace

// Each parenthesis is told where it is closed; so the parser can look ahead without reading anything twice.
void TSQLTokens::Read(std::string_view source) {
    if (source.size() > std::numeric_limits<std::int32_t>::max())
        throw ESQLParserError(msgWrongSQL, 1);
    if (source.size() / 5 > capacity_)
        Grow(source.size() / 5);
    count_ = 0;
    innermost_ = -1;
    depth_ = 0;
    const char* end = source.data(); // of the token before
    bool afterDot = false;
    std::int32_t wideGaps = 0;
    TVScanner scanner(source);
    for (; !scanner.AtEnd(); scanner.Next()) {
        if (count_ + 1 == capacity_)
            Grow(2 * capacity_);
        const TToken& scanned = scanner.Token();
        const auto gap = scanned.Text.data() - end;
        wideGaps += gap > 1 || (gap == 1 && *end != ' ') ? 1 : 0;
        TSQLToken& token = items_[count_++];
        token = {scanned.Text.data(),
                 static_cast<std::uint32_t>(scanned.Text.size()),
                 scanned.Line,
                 -1,
                 wideGaps,
                 scanned.Kind,
                 '\0',
                 swNone,
                 0};
        end = token.End();
        if (token.Kind == tkSymbol)
            ClassifySymbol(token);
        else if (token.Kind == tkIdentifier && !afterDot)
            ClassifyName(token, source);
        else if (token.Kind == tkUnclosed)
            throw ESQLParserError(msgWrongSQL, token.Line);
        afterDot = token.Symbol == '.';
        if (token.Roles & (trOpens | trCloses | trComparison))
            Pair(token);
    }
    while (innermost_ >= 0)
        LeaveInnermost(-1);
    // An error at the end bears the last token's line.
    const std::int32_t line = count_ > 0 ? items_[count_ - 1].Line : scanner.Token().Line;
    items_[count_++] = {end, 0, line, -1, wideGaps, tkEnd, '\0', swNone, trEndsValue};
}

void TSQLTokens::Grow(std::size_t capacity) {
    std::unique_ptr<TSQLToken[]> more(new TSQLToken[capacity]);
    std::copy(items_, items_ + count_, more.get());
    more_ = std::move(more);
    items_ = more_.get();
    capacity_ = capacity;
}

// --- Pairs. What is open is a chain through Match, from the innermost outwards.

void TSQLTokens::Pair(TSQLToken& token) {
    if (token.Roles & trOpens)
        Open(token);
    else if (token.Roles & trCloses)
        Close(token);
    else if (innermost_ >= 0)
        items_[innermost_].Roles |= trGroup;
}

void TSQLTokens::Open(TSQLToken& token) {
    if (depth_ == MaxSQLNesting)
        throw ESQLParserError(msgWrongSQL, token.Line);
    ++depth_;
    token.Match = innermost_;
    innermost_ = static_cast<std::int32_t>(&token - items_);
}

void TSQLTokens::Close(const TSQLToken& token) {
    const bool isCase = token.Word == swEnd;
    while (!isCase && innermost_ >= 0 && items_[innermost_].Word == swCase)
        LeaveInnermost(-1); // a CASE without its END
    if (innermost_ < 0 || (isCase && items_[innermost_].Word != swCase))
        return;
    TSQLToken& opener = items_[innermost_];
    LeaveInnermost(static_cast<std::int32_t>(&token - items_));
    if (isCase || (&opener)[1].Word == swSelect)
        opener.Roles &= static_cast<std::uint8_t>(~trGroup);
    if ((opener.Roles & trGroup) && innermost_ >= 0)
        items_[innermost_].Roles |= trGroup;
}

void TSQLTokens::LeaveInnermost(std::int32_t match) {
    TSQLToken& opener = items_[innermost_];
    innermost_ = opener.Match;
    opener.Match = match;
    --depth_;
}

} // namespace lumora
