#include "lumora/sqlparse/sql_tokens.h"

#include "lumora/sqlparse/parser_error.h"
#include "lumora/sqlparse/word_table.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace lumora {

namespace {

constexpr std::uint16_t RolesOf(TSQLWord word) {
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
    case swIlike:
        return trStrictOp;
    case swCase:
        return trOpens;
    case swEnd:
        return trCloses;
    default:
        return BeginsClause(word) ? trEndsValue | trClause : 0;
    }
}

constexpr std::uint16_t RolesOf(char symbol) {
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
constexpr std::array<std::uint16_t, Count> MakeRoles() {
    std::array<std::uint16_t, Count> roles{};
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

void ClassifyName(TSQLToken& token, const char* sourceEnd) {
    const bool isReadable = sourceEnd - token.Begin >= static_cast<std::ptrdiff_t>(detail::LongestWord);
    token.Word = isReadable ? detail::WordAt(token.Begin, token.Length) : SQLWordOf(token.Text());
    token.Roles = RolesOfWord[token.Word];
}

} // namespace

// Each parenthesis is told where it is closed; so the parser can look ahead without reading anything twice.
void TSQLTokens::Read(std::string_view source, bool quotedNames) {
    Start(source);
    const char* end = source.data(); // of the token before
    bool afterDot = false;
    std::int32_t wideGaps = 0;
    TVScanner scanner(source);
    for (; !scanner.AtEnd(); scanner.Next()) {
        if (quotedNames)
            scanner.TakeQuotedName();
        const TToken& scanned = scanner.Token();
        const auto gap = scanned.Text.data() - end;
        wideGaps += gap > 1 || (gap == 1 && *end != ' ') ? 1 : 0;
        TSQLToken& token = Add(scanned, wideGaps);
        if (token.Kind == tkSymbol)
            ClassifySymbol(token);
        else if (token.Kind == tkIdentifier && !afterDot)
            ClassifyName(token, source.data() + source.size());
        else if (token.Kind == tkUnclosed)
            throw ESQLParserError(msgWrongSQL, PlaceOf(token));
        afterDot = token.Symbol == '.';
        end = token.End();
        if (token.Roles & (trOpens | trCloses | trComparison))
            Pair(token);
    }
    Finish(scanner.Token());
}

TTextPlace TSQLTokens::PlaceOf(const TSQLToken& token) const {
    return {token.Line, static_cast<int>(token.Begin - source_.data()), static_cast<int>(token.Length)};
}

void TSQLTokens::Start(std::string_view source) {
    const std::size_t sourceSize = source.size();
    if (sourceSize > std::numeric_limits<std::int32_t>::max())
        throw ESQLParserError(msgWrongSQL, {1});
    source_ = source;
    count_ = 1;
    innermost_ = 0;
    depth_ = 0;
    items_[0] = {};
    if (sourceSize / 4 > capacity_)
        Grow(sourceSize / 4);
}

TSQLToken& TSQLTokens::Add(const TToken& scanned, std::int32_t wideGaps) {
    if (count_ + 1 == capacity_)
        Grow(2 * capacity_);
    TSQLToken& token = items_[count_++];
    token.Begin = scanned.Text.data();
    token.Length = static_cast<std::uint32_t>(scanned.Text.size());
    token.Line = scanned.Line;
    token.Step = 1;
    token.WideGaps = wideGaps;
    token.Kind = scanned.Kind;
    token.Symbol = '\0';
    token.Word = swNone;
    token.Roles = 0;
    return token;
}

void TSQLTokens::Finish(const TToken& end) {
    while (innermost_ != 0)
        if (TSQLToken& opener = LeaveInnermost(); opener.Symbol == '(')
            opener.Step = static_cast<std::int32_t>(items_ + count_ - &opener);
    // An error at the end bears the last token's line.
    const std::int32_t line = count_ > 1 ? items_[count_ - 1].Line : end.Line;
    TSQLToken& token = Add(end, 0);
    token.Line = line;
    token.Step = 0;
    token.Roles = trEndsValue;
}

void TSQLTokens::Grow(std::size_t capacity) {
    std::unique_ptr<TSQLToken[]> more(new TSQLToken[capacity]);
    std::copy(items_, items_ + count_, more.get());
    more_ = std::move(more);
    items_ = more_.get();
    capacity_ = capacity;
}

// --- Pairs. What is open is a chain through Step, from the innermost outwards.

void TSQLTokens::Pair(TSQLToken& token) {
    if (token.Roles & trOpens)
        Open(token);
    else if (token.Roles & trCloses)
        Close(token);
    else
        items_[innermost_].Roles |= trGroup;
}

void TSQLTokens::Open(TSQLToken& token) {
    if (depth_ == MaxSQLNesting)
        throw ESQLParserError(msgWrongSQL, PlaceOf(token));
    ++depth_;
    token.Step = innermost_;
    innermost_ = static_cast<std::int32_t>(&token - items_);
}

void TSQLTokens::Close(const TSQLToken& token) {
    const bool isCase = token.Word == swEnd;
    while (!isCase && items_[innermost_].Word == swCase)
        LeaveInnermost(); // a CASE without its END
    if (innermost_ == 0 || (isCase && items_[innermost_].Word != swCase))
        return;
    TSQLToken& opener = LeaveInnermost();
    opener.Step = static_cast<std::int32_t>(&token - &opener) + 1;
    opener.Roles |= trClosed;
    if (isCase || (&opener)[1].Word == swSelect)
        opener.Roles &= static_cast<std::uint16_t>(~trGroup);
    items_[innermost_].Roles |= static_cast<std::uint16_t>(opener.Roles & trGroup);
}

TSQLToken& TSQLTokens::LeaveInnermost() {
    TSQLToken& opener = items_[innermost_];
    innermost_ = opener.Step;
    opener.Step = 1;
    --depth_;
    return opener;
}

} // namespace lumora
