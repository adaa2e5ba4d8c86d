#include "plain_lexer.h"

#include <array>
#include <cstdint>

namespace lumora::bench {

namespace {

// Characters that are not named here are symbols that stand alone.
enum TClass : std::uint8_t { clBlank, clLineEnd, clLetter, clDigit, clSymbol };
constexpr std::size_t ClassCount = 32;

enum TState : std::uint8_t {
    lsBetween,
    lsName,
    lsNumber,
    lsSymbol, // a symbol that nothing can lengthen
    lsMinus,
    lsSlash,
    lsLess,
    lsEqualFollows, // "!" or ">"
    lsBar,
    lsText,
    lsTextQuote, // a quote in a text: its end, or the first of two
    lsQuoted,
    lsQuotedQuote,
    lsLineComment,
    lsComment,
    lsCommentStar,
    StateCount,
    lsNone = StateCount
};

// The symbols that can be lengthened or lengthen others have a class each.
constexpr char ClassedSymbols[] = {'.', '-', '/', '*', '<', '>', '=', '!', '|', '\'', '"'};

constexpr std::uint8_t ClassOf(char symbol) {
    for (std::uint8_t i = 0; i < sizeof(ClassedSymbols); ++i)
        if (ClassedSymbols[i] == symbol)
            return static_cast<std::uint8_t>(clSymbol + 1 + i);
    return clSymbol;
}

constexpr std::array<std::uint8_t, 256> MakeClasses() {
    std::array<std::uint8_t, 256> classes{};
    for (unsigned c = 0; c < 256; ++c) {
        const unsigned letter = (c | 0x20u) - 'a';
        if (c <= ' ')
            classes[c] = c == '\n' ? clLineEnd : clBlank;
        else if (c >= '0' && c <= '9')
            classes[c] = clDigit;
        else if (letter < 26 || c == '_' || c == '$' || c == '#' || c == '@' || c >= 128)
            classes[c] = clLetter;
        else
            classes[c] = ClassOf(static_cast<char>(c));
    }
    return classes;
}

constexpr TState Begun(std::uint8_t c) {
    constexpr struct {
        char Symbol;
        TState State;
    } begun[] = {{'-', lsMinus},        {'/', lsSlash}, {'<', lsLess},  {'>', lsEqualFollows},
                 {'!', lsEqualFollows}, {'|', lsBar},   {'\'', lsText}, {'"', lsQuoted}};
    for (const auto& entry : begun)
        if (ClassOf(entry.Symbol) == c)
            return entry.State;
    return c <= clLineEnd ? lsBetween : c == clLetter ? lsName : c == clDigit ? lsNumber : lsSymbol;
}

// The state of a token, or a comment, that the class goes on with; lsNone where the token has ended.
constexpr TState Continued(TState state, std::uint8_t c) {
    const auto when = [c](char symbol, TState then, TState otherwise) {
        return c == ClassOf(symbol) ? then : otherwise;
    };
    switch (state) {
    case lsName:
        return c == clLetter || c == clDigit ? lsName : lsNone;
    case lsNumber:
        return c == clDigit ? lsNumber : when('.', lsNumber, lsNone);
    case lsMinus:
        return when('-', lsLineComment, lsNone);
    case lsSlash:
        return when('*', lsComment, lsNone);
    case lsLess:
        return when('>', lsSymbol, when('=', lsSymbol, lsNone));
    case lsEqualFollows:
        return when('=', lsSymbol, lsNone);
    case lsBar:
        return when('|', lsSymbol, lsNone);
    case lsText:
        return when('\'', lsTextQuote, lsText);
    case lsTextQuote:
        return when('\'', lsText, lsNone);
    case lsQuoted:
        return when('"', lsQuotedQuote, lsQuoted);
    case lsQuotedQuote:
        return when('"', lsQuoted, lsNone);
    case lsLineComment:
        return c == clLineEnd ? lsBetween : lsLineComment;
    case lsComment:
        return when('*', lsCommentStar, lsComment);
    case lsCommentStar:
        return when('/', lsBetween, when('*', lsCommentStar, lsComment));
    default:
        return lsNone;
    }
}

// An entry is where the row of the next state begins; the uppermost bit tells that a token ends before the
// character.
constexpr std::uint16_t TokenEnds = 0x8000;

constexpr std::array<std::uint16_t, StateCount * ClassCount> MakeSteps() {
    std::array<std::uint16_t, StateCount * ClassCount> steps{};
    for (std::size_t row = 0; row < StateCount; ++row)
        for (std::uint8_t c = 0; c < ClassCount; ++c) {
            const TState next = Continued(static_cast<TState>(row), c);
            const bool ends = next == lsNone && row != lsBetween;
            const std::size_t target = next == lsNone ? Begun(c) : next;
            steps[row * ClassCount + c] =
                static_cast<std::uint16_t>(target * ClassCount + (ends ? TokenEnds : 0));
        }
    return steps;
}

constexpr auto Classes = MakeClasses();
constexpr auto Steps = MakeSteps();

} // namespace

// Without a branch but that of the loop, so nothing of it has to be foretold.
std::size_t CountTokensByTable(std::string_view text) {
    std::size_t tokens = 0;
    std::size_t row = lsBetween;
    for (const char c : text) {
        const unsigned step = Steps[row + Classes[static_cast<unsigned char>(c)]];
        tokens += step / TokenEnds;
        row = step % TokenEnds;
    }
    return tokens + Steps[row + clBlank] / TokenEnds;
}

} // namespace lumora::bench
