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
        return TryStrToDateTime(text).has_value();
    case ftDate:
    case ftDateTime: // a time of day alone is no date
        return TryStrToDateTime(text).has_value() && !TryStrToTime(text);
    default:
        return IsInteger(text);
    }
}

void RaiseInvalidValue(std::string_view text, std::string_view caption) {
    throw EVQueryPanelError(qpeInvalidValue, {text, caption});
}

namespace {

bool IsClauseWord(const TToken& token) {
    const TSQLWord word = token.Kind == tkIdentifier ? SQLWordOf(token.Text) : swNone;
    return BeginsClause(word) || word == swWith;
}

// What reads as something else, or begins a string, in some databases: $$..$$, E'..', `..`, # to the end of
// the line.
bool IsForeign(const TToken& token, char next) {
    if (token.Kind == tkIdentifier)
        return next == '\'' || token.Text.find("$$") != std::string_view::npos || token.Text[0] == '#';
    return token.IsSymbol(';') || token.IsSymbol('`') || token.IsSymbol('\\') || token.Kind == tkUnclosed;
}

bool HoldsTogether(std::string_view text, bool isExpression) {
    int depth = 0;
    const char* previousEnd = text.data();
    const char* const end = text.data() + text.size();
    TVScanner scanner(text);
    for (; !scanner.AtEnd() && depth >= 0; scanner.Next()) {
        const TToken& token = scanner.Token();
        const char* const tokenEnd = token.Text.data() + token.Text.size();
        const std::string_view between(previousEnd,
                                       static_cast<std::size_t>(token.Text.data() - previousEnd));
        depth += token.IsSymbol('(') ? 1 : token.IsSymbol(')') ? -1 : 0;
        const bool leaves = isExpression && depth == 0 && (token.IsSymbol(',') || IsClauseWord(token));
        if (leaves || IsForeign(token, tokenEnd < end ? *tokenEnd : '\0') || !Trim(between).empty())
            return false;
        previousEnd = tokenEnd;
    }
    return depth == 0 &&
           Trim(std::string_view(previousEnd, static_cast<std::size_t>(end - previousEnd))).empty();
}

} // namespace

void CheckExpression(std::string_view text, std::string_view caption) {
    if (!HoldsTogether(text, true))
        RaiseInvalidValue(text, caption);
}

void CheckSubQuery(std::string_view text, std::string_view caption) {
    if (SQLWordOf(TVScanner(text).Token().Text) != swSelect || !HoldsTogether(text, false))
        RaiseInvalidValue(text, caption);
}

bool CallsAggregate(std::string_view expression) {
    static constexpr std::string_view functions[] = {"sum", "count", "max", "min", "avg"};
    bool afterFunction = false;
    for (TVScanner scanner(expression); !scanner.AtEnd(); scanner.Next()) {
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

} // namespace lumora
