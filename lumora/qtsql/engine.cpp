#include "lumora/qtsql/engine.h"

#include "lumora/model/structure.h"

#include <algorithm>

namespace lumora {

namespace {

// Words that are no names without quotes: those that the engines reserve, taken together. A name that is
// quoted without need means the same.
constexpr std::string_view reservedWords[] = {"abort",
                                              "action",
                                              "add",
                                              "after",
                                              "all",
                                              "alter",
                                              "always",
                                              "analyse",
                                              "analyze",
                                              "and",
                                              "any",
                                              "array",
                                              "as",
                                              "asc",
                                              "asymmetric",
                                              "attach",
                                              "authorization",
                                              "autoincrement",
                                              "before",
                                              "begin",
                                              "between",
                                              "binary",
                                              "both",
                                              "by",
                                              "cascade",
                                              "case",
                                              "cast",
                                              "check",
                                              "collate",
                                              "collation",
                                              "column",
                                              "commit",
                                              "concurrently",
                                              "conflict",
                                              "constraint",
                                              "create",
                                              "cross",
                                              "current",
                                              "current_catalog",
                                              "current_date",
                                              "current_role",
                                              "current_schema",
                                              "current_time",
                                              "current_timestamp",
                                              "current_user",
                                              "database",
                                              "default",
                                              "deferrable",
                                              "deferred",
                                              "delete",
                                              "desc",
                                              "describe",
                                              "detach",
                                              "distinct",
                                              "do",
                                              "drop",
                                              "each",
                                              "else",
                                              "end",
                                              "escape",
                                              "except",
                                              "exclude",
                                              "exclusive",
                                              "exists",
                                              "explain",
                                              "fail",
                                              "false",
                                              "fetch",
                                              "filter",
                                              "first",
                                              "following",
                                              "for",
                                              "foreign",
                                              "freeze",
                                              "from",
                                              "full",
                                              "generated",
                                              "glob",
                                              "grant",
                                              "group",
                                              "groups",
                                              "having",
                                              "if",
                                              "ignore",
                                              "ilike",
                                              "immediate",
                                              "in",
                                              "index",
                                              "indexed",
                                              "initially",
                                              "inner",
                                              "insert",
                                              "instead",
                                              "intersect",
                                              "into",
                                              "is",
                                              "isnull",
                                              "join",
                                              "key",
                                              "last",
                                              "lateral",
                                              "leading",
                                              "left",
                                              "like",
                                              "limit",
                                              "localtime",
                                              "localtimestamp",
                                              "lock",
                                              "match",
                                              "materialized",
                                              "natural",
                                              "no",
                                              "not",
                                              "nothing",
                                              "notnull",
                                              "null",
                                              "nulls",
                                              "of",
                                              "offset",
                                              "on",
                                              "only",
                                              "or",
                                              "order",
                                              "others",
                                              "outer",
                                              "over",
                                              "overlaps",
                                              "partition",
                                              "placing",
                                              "plan",
                                              "pragma",
                                              "preceding",
                                              "primary",
                                              "query",
                                              "raise",
                                              "range",
                                              "recursive",
                                              "references",
                                              "regexp",
                                              "reindex",
                                              "release",
                                              "rename",
                                              "replace",
                                              "restrict",
                                              "returning",
                                              "right",
                                              "rollback",
                                              "row",
                                              "rows",
                                              "savepoint",
                                              "select",
                                              "session_user",
                                              "set",
                                              "similar",
                                              "some",
                                              "symmetric",
                                              "system_user",
                                              "table",
                                              "tablesample",
                                              "temp",
                                              "temporary",
                                              "then",
                                              "ties",
                                              "to",
                                              "trailing",
                                              "transaction",
                                              "trigger",
                                              "true",
                                              "unbounded",
                                              "union",
                                              "unique",
                                              "update",
                                              "user",
                                              "using",
                                              "vacuum",
                                              "values",
                                              "variadic",
                                              "verbose",
                                              "view",
                                              "virtual",
                                              "when",
                                              "where",
                                              "window",
                                              "with",
                                              "without"};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}
bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

bool isReserved(std::string_view name) {
    return std::binary_search(std::begin(reservedWords), std::end(reservedWords), LowerAscii(name));
}

} // namespace

Engine engineOf(const QSqlDatabase& database) {
    return engineOf(database.driverName());
}

Engine engineOf(const QString& driver) {
    if (driver == QLatin1StringView("QSQLITE"))
        return Engine::Sqlite;
    if (driver == QLatin1StringView("QPSQL"))
        return Engine::PostgreSql;
    if (driver == QLatin1StringView("QMYSQL") || driver == QLatin1StringView("QMARIADB"))
        return Engine::MySql;
    return Engine::Other;
}

// PostgreSQL folds unquoted names to lower case. Letters beyond ASCII are left to quotes everywhere.
TSQLDialect dialectOf(Engine engine) {
    switch (engine) {
    case Engine::Sqlite:
        return sdSQLite;
    case Engine::PostgreSql:
        return sdPostgreSQL;
    case Engine::MySql:
        return sdMySQL;
    case Engine::Other:
        break;
    }
    return sdStandard;
}

bool needsQuotes(Engine engine, std::string_view name) {
    const bool foldsCase = engine == Engine::PostgreSql;
    const auto isNameChar = [&](char c) {
        return isLower(c) || isDigit(c) || c == '_' || (isUpper(c) && !foldsCase);
    };
    return name.empty() || isDigit(name.front()) || !std::all_of(name.begin(), name.end(), isNameChar) ||
           isReserved(name);
}

void prepareModel(TVCustomDBStructure& model, Engine engine) {
    TSQLFormats& formats = model.GetSQLFormats();
    formats.SetDate("yyyy-mm-dd");
    formats.SetTime("hh:nn:ss");
    formats.SetDateTime("yyyy-mm-dd hh:nn:ss");
    formats.SetQuoteSymbol1('"');
    formats.SetQuoteSymbol2('"');
    TQuotedTypes quoted = DefaultQuotedTypes + TQuotedTypes{ftGuid};
    if (engine == Engine::Sqlite || engine == Engine::MySql) // true, false, 1 and 0 stand for themselves
        quoted = quoted - TQuotedTypes{ftBoolean};
    if (engine == Engine::PostgreSql) // money compares with no number
        quoted = quoted + TQuotedTypes{ftCurrency};
    model.SetQuotedTypes(quoted);
}

} // namespace lumora
