#include "query/strict_checks.h"

#include "platform/ascii.h"
#include "platform/convert.h"
#include "platform/formats.h"
#include "query/errors.h"
#include "sqlparse/Vscanner.h"

#include <unordered_set>

namespace lumora {

namespace {

// Words that SQLite, PostgreSQL, MySQL or Oracle reserve, from the lists in their manuals.
const std::unordered_set<std::string_view, TNoCaseHash, TNoCaseEqual>& ReservedWords() {
    static const std::unordered_set<std::string_view, TNoCaseHash, TNoCaseEqual> words = {
        "access",    "add",         "all",        "alter",      "analyse",    "analyze",   "and",
        "any",       "array",       "as",         "asc",        "asymmetric", "audit",     "autoincrement",
        "begin",     "between",     "both",       "by",         "case",       "cast",      "change",
        "char",      "check",       "cluster",    "collate",    "collation",  "column",    "comment",
        "commit",    "compress",    "condition",  "connect",    "constraint", "create",    "cross",
        "current",   "cursor",      "database",   "date",       "decimal",    "default",   "deferrable",
        "delete",    "desc",        "describe",   "distinct",   "div",        "do",        "drop",
        "else",      "end",         "escape",     "except",     "exclusive",  "exists",    "explain",
        "false",     "fetch",       "file",       "float",      "for",        "force",     "foreign",
        "from",      "full",        "function",   "glob",       "grant",      "group",     "groups",
        "having",    "identified",  "if",         "ilike",      "immediate",  "in",        "increment",
        "index",     "initial",     "initially",  "inner",      "insert",     "integer",   "intersect",
        "interval",  "into",        "is",         "isnull",     "join",       "key",       "keys",
        "kill",      "lateral",     "leading",    "left",       "level",      "like",      "limit",
        "lock",      "long",        "match",      "maxextents", "minus",      "mode",      "modify",
        "natural",   "noaudit",     "nocompress", "not",        "notnull",    "nowait",    "null",
        "number",    "of",          "offline",    "offset",     "on",         "online",    "only",
        "option",    "or",          "order",      "out",        "outer",      "over",      "overlaps",
        "partition", "placing",     "prior",      "primary",    "privileges", "procedure", "public",
        "range",     "rank",        "raw",        "read",       "references", "regexp",    "release",
        "rename",    "repeat",      "replace",    "resource",   "returning",  "revoke",    "right",
        "rollback",  "row",         "rows",       "select",     "session",    "set",       "share",
        "show",      "similar",     "size",       "smallint",   "some",       "start",     "successful",
        "symmetric", "synonym",     "sysdate",    "system",     "table",      "then",      "to",
        "trailing",  "transaction", "trigger",    "true",       "uid",        "union",     "unique",
        "update",    "usage",       "use",        "user",       "using",      "validate",  "values",
        "varchar",   "verbose",     "view",       "when",       "whenever",   "where",     "while",
        "window",    "with",        "write"};
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
    switch (type) {
    case ftSmallint:
    case ftInteger:
    case ftWord:
    case ftAutoInc:
    case ftLargeint:
    case ftFloat:
    case ftCurrency:
    case ftBCD:
    case ftBoolean:
    case ftDate:
    case ftTime:
    case ftDateTime:
        return true;
    default:
        return false;
    }
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

void CheckExpression(std::string_view text, std::string_view caption) {
    int depth = 0;
    const char* previousEnd = text.data();
    TVScanner scanner(text);
    for (; !scanner.AtEnd(); scanner.Next()) {
        const TToken& token = scanner.Token();
        const std::string_view between(previousEnd,
                                       static_cast<std::size_t>(token.Text.data() - previousEnd));
        if (token.IsSymbol('('))
            ++depth;
        else if (token.IsSymbol(')'))
            --depth;
        if (depth < 0 || token.Kind == tkUnclosed || token.IsSymbol(';') || !Trim(between).empty())
            RaiseInvalidValue(text, caption);
        previousEnd = token.Text.data() + token.Text.size();
    }
    const std::string_view rest(previousEnd,
                                static_cast<std::size_t>(text.data() + text.size() - previousEnd));
    if (depth != 0 || !Trim(rest).empty())
        RaiseInvalidValue(text, caption);
}

} // namespace lumora
