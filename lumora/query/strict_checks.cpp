#include "lumora/query/strict_checks.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/convert.h"
#include "lumora/platform/formats.h"
#include "lumora/query/errors.h"
#include "lumora/sqlparse/Vscanner.h"
#include "lumora/sqlparse/sql_words.h"

#include <algorithm>
#include <unordered_set>

namespace lumora {

namespace {

// Words that the SQL standard and SQLite or PostgreSQL reserve, from the lists in their manuals. Words that
// only one engine reserves are left out: they are captions too often ("Date", "Number").
const std::unordered_set<std::string_view, TNoCaseHash, TNoCaseEqual>& ReservedWords() {
    static const std::unordered_set<std::string_view, TNoCaseHash, TNoCaseEqual> words = {
        "add",        "all",         "alter",   "and",        "as",      "asc",        "autoincrement",
        "between",    "both",        "by",      "case",       "cast",    "check",      "collate",
        "collation",  "column",      "commit",  "constraint", "create",  "cross",      "default",
        "deferrable", "delete",      "desc",    "distinct",   "drop",    "else",       "escape",
        "except",     "exists",      "false",   "fetch",      "for",     "foreign",    "from",
        "full",       "grant",       "group",   "having",     "if",      "in",         "index",
        "initially",  "inner",       "insert",  "intersect",  "into",    "is",         "isnull",
        "join",       "leading",     "left",    "like",       "limit",   "minus",      "natural",
        "not",        "nothing",     "notnull", "null",       "of",      "offset",     "on",
        "option",     "or",          "order",   "outer",      "primary", "references", "returning",
        "revoke",     "right",       "select",  "set",        "table",   "then",       "to",
        "trailing",   "transaction", "true",    "union",      "unique",  "update",     "using",
        "values",     "when",        "where",   "while",      "with"};
    return words;
}

bool IsInteger(std::string_view text) {
    if (!text.empty() && (text[0] == '-' || text[0] == '+'))
        text.remove_prefix(1);
    for (const char c : text)
        if (!IsDigit(c))
            return false;
    return !text.empty();
}

} // namespace

bool IsParamName(std::string_view name) {
    for (const char c : name) {
        const char lower = LowerAscii(c);
        if (!(lower >= 'a' && lower <= 'z') && !IsDigit(c) && c != '_' && static_cast<unsigned char>(c) < 128)
            return false;
    }
    return !name.empty();
}

bool IsPlainName(std::string_view name) {
    return IsParamName(name) && !IsDigit(name[0]) && ReservedWords().count(name) == 0;
}

bool IsCheckedType(TFieldType type) {
    return IsNumber(type) || type == ftBoolean || IsDateOrTime(type);
}

namespace {

// A time of day alone is no date, and nothing keeps parts of a millisecond.
bool IsValidDate(TFieldType type, std::string_view text) {
    const std::optional<TReadDateTime> read = ReadDateTime(text);
    return read && read->Precision != dpFiner && (type == ftTime || (read->HasDate && !TryStrToTime(text)));
}

} // namespace

bool IsValidValue(TFieldType type, std::string_view text) {
    text = Trim(text);
    switch (type) {
    case ftFloat:
    case ftCurrency:
    case ftBCD:
        return TryStrToFloat(text).has_value();
    case ftBoolean:
        return text == "0" || text == "1" || SameText(text, "true") || SameText(text, "false");
    case ftTime:
    case ftDate:
    case ftDateTime:
        return IsValidDate(type, text);
    default:
        return IsInteger(text);
    }
}

void RaiseInvalidValue(std::string_view text, std::string_view caption) {
    throw EVQueryPanelError(qpeInvalidValue, {text, caption});
}

namespace {

// The tokens of a text as the dialect has them: a name in backquotes is one too, where it knows them.
class TDialectScanner {
public:
    TDialectScanner(std::string_view text, const TDialect& dialect)
        : end_(text.data() + text.size()),
          takesBackquotes_(dialect.NameQuotes &&
                           TQuoteSymbols{'`', '`'}.AreTaken({true, dialect.NameQuotes})),
          scanner_(text) {
        Join();
    }

    const TToken& Token() const { return token_; }
    bool AtEnd() const { return token_.Kind == tkEnd; }
    void Next() {
        if (!ahead_)
            scanner_.Next();
        Join();
    }
    std::string_view From(const char* start) const { return {start, static_cast<std::size_t>(end_ - start)}; }
    // What follows the token; the null character at the end.
    char Following() const { return TokenEnd() < end_ ? *TokenEnd() : '\0'; }
    const char* TokenEnd() const { return token_.Text.data() + token_.Text.size(); }

private:
    void Join() {
        token_ = scanner_.Token();
        ahead_ = false;
        if (!takesBackquotes_ || !token_.IsSymbol('`'))
            return;
        const char* const start = token_.Text.data();
        const char* const close = std::find(start + 1, end_, '`');
        token_.Kind = close == end_ ? tkUnclosed : tkQuotedIdentifier;
        const char* const behind = close == end_ ? end_ : close + 1;
        token_.Text = {start, static_cast<std::size_t>(behind - start)};
        scanner_ = TVScanner(From(behind)); // it stands at the next token now
        ahead_ = true;
    }

    const char* end_;
    bool takesBackquotes_;
    TVScanner scanner_;
    bool ahead_ = false; // the scanner stands behind the token, not at it
    TToken token_;
};

bool IsClauseWord(const TToken& token) {
    const TSQLWord word = token.Kind == tkIdentifier ? SQLWordOf(token.Text) : swNone;
    return BeginsClause(word) || word == swWith;
}

// A text in hexadecimal digits, X'5C', which no mode of an engine that writes them reads otherwise.
bool IsHexText(std::string_view text, const TDialect& dialect) {
    if (dialect.HexText.empty() || text.size() < 3 || LowerAscii(text[0]) != 'x' || text[1] != '\'')
        return false;
    const std::size_t end = text.find_first_not_of("0123456789abcdefABCDEF", 2);
    return end != std::string_view::npos && text[end] == '\'' && end % 2 == 0;
}

// What reads as something else, or begins a string, in some databases: $$..$$, E'..', `..`, # to the end of
// the line, a backslash in a text.
bool IsForeign(const TDialectScanner& scanner, const TDialect& dialect) {
    const TToken& token = scanner.Token();
    const char* const start = token.Text.data();
    if (token.Kind == tkIdentifier)
        return (scanner.Following() == '\'' && !IsHexText(scanner.From(start), dialect)) ||
               token.Text.find("$$") != std::string_view::npos || token.Text[0] == '#' ||
               (dialect.HashComments && token.Text.find('#') != std::string_view::npos);
    if (token.Kind == tkString || token.Kind == tkQuotedIdentifier)
        return NeedsHexText(dialect, token.Text) && token.Text[0] != '`';
    return token.IsSymbol(';') || token.IsSymbol('`') || token.IsSymbol('\\') || token.Kind == tkUnclosed;
}

bool HoldsTogether(std::string_view text, bool isExpression, const TDialect& dialect) {
    int depth = 0;
    const char* previousEnd = text.data();
    const char* const end = text.data() + text.size();
    TDialectScanner scanner(text, dialect);
    for (; !scanner.AtEnd() && depth >= 0; scanner.Next()) {
        const TToken& token = scanner.Token();
        const std::string_view between(previousEnd,
                                       static_cast<std::size_t>(token.Text.data() - previousEnd));
        depth += token.IsSymbol('(') ? 1 : token.IsSymbol(')') ? -1 : 0;
        const bool leaves = isExpression && depth == 0 && (token.IsSymbol(',') || IsClauseWord(token));
        if (leaves || IsForeign(scanner, dialect) || !Trim(between).empty())
            return false;
        previousEnd = scanner.TokenEnd();
    }
    return depth == 0 &&
           Trim(std::string_view(previousEnd, static_cast<std::size_t>(end - previousEnd))).empty();
}

} // namespace

void CheckExpression(std::string_view text, std::string_view caption, const TDialect& dialect) {
    if (!HoldsTogether(text, true, dialect))
        RaiseInvalidValue(text, caption);
}

void CheckSubQuery(std::string_view text, std::string_view caption, const TDialect& dialect) {
    if (SQLWordOf(TVScanner(text).Token().Text) != swSelect || !HoldsTogether(text, false, dialect))
        RaiseInvalidValue(text, caption);
}

bool CallsAggregate(std::string_view expression, const TDialect& dialect) {
    static constexpr std::string_view functions[] = {"sum", "count", "max", "min", "avg"};
    bool afterFunction = false;
    for (TDialectScanner scanner(expression, dialect); !scanner.AtEnd(); scanner.Next()) {
        const TToken& token = scanner.Token();
        if (afterFunction && token.IsSymbol('('))
            return true;
        afterFunction = token.Kind == tkIdentifier &&
                        std::any_of(std::begin(functions), std::end(functions),
                                    [&](std::string_view name) { return SameText(token.Text, name); });
    }
    return false;
}

bool IsNumberConstant(std::string_view expression) {
    int numbers = 0;
    for (TVScanner scanner(expression); !scanner.AtEnd(); scanner.Next()) {
        const TToken& token = scanner.Token();
        const bool isSign =
            token.IsSymbol('(') || token.IsSymbol(')') || token.IsSymbol('+') || token.IsSymbol('-');
        if (token.Kind != tkNumber && !isSign)
            return false;
        numbers += token.Kind == tkNumber ? 1 : 0;
    }
    return numbers == 1;
}

bool StandsAlone(std::string_view sqlTemplate, int value) {
    if (sqlTemplate.find('\'') == std::string_view::npos)
        return true;
    const std::string placeholder = "@" + std::to_string(value);
    bool inLiteral = false;
    for (std::size_t at = 0; at < sqlTemplate.size(); ++at) {
        if (sqlTemplate[at] == '\'')
            inLiteral = !inLiteral;
        if (!inLiteral || sqlTemplate.substr(at, placeholder.size()) != placeholder)
            continue;
        const std::size_t end = at + placeholder.size();
        if (sqlTemplate[at - 1] != '\'' || end == sqlTemplate.size() || sqlTemplate[end] != '\'')
            return false;
    }
    return true;
}

} // namespace lumora
