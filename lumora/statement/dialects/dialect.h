// What an engine wants of a text, as data: a file for each engine beside this one, and no question of which
// engine it is anywhere else.
//
// Expressions are patterns: "@1" and "@2" stand for their operands, each of which is a name or stands in
// brackets. An empty pattern says that the engine has no such thing.
#pragma once

#include "lumora/model/sql_syntax.h"
#include "lumora/platform/field_types.h"
#include "lumora/statement/sql_dialect.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace lumora {

// How a date or time is written.
struct TDateForm {
    std::string_view Mask = {}; // empty: the model's for the type
    std::string_view Before = {};
    std::string_view After = {};
    bool IsLiteral = false; // brings its own quotes, or needs none
};

// A pattern for each part of a date that can be asked for.
struct TDatePatterns {
    std::string_view Year = {};
    std::string_view Quarter = {};
    std::string_view Month = {};
    std::string_view Week = {}; // from Monday on; its number is that of ISO 8601
    std::string_view Day = {};
    std::string_view Hour = {};
};

struct TDialect {
    // Placeholders outside quotes are replaced alone, and values bring their own quotes there.
    bool Exact = true;

    // The pairs of symbols that may stand around a name, its own first; none: whatever the model has.
    const char* NameQuotes = nullptr;

    // A text with a backslash is written in hexadecimal digits behind this, for a backslash in quotes may
    // stand for itself or not; empty: it stands for itself.
    std::string_view HexText = {};
    bool HashComments = false; // "#" begins a comment
    // A name in double quotes that no column has is a text. Where the engine isn't known it can't be anything
    // else: others refuse the statement.
    bool DoubleQuotedTexts = false;
    std::string_view DefaultSchema = {}; // tables of this one need no schema before their name

    TDateForm Date = {};
    TDateForm Time = {};
    TDateForm DateTime = {};
    bool ComparesDatesAsText = false; // there is no type for them
    std::string_view True = {};       // truth values; empty: as they are entered, in quotes
    std::string_view False = {};

    // A number as a column of single precision holds it; empty: it compares so by itself.
    std::string_view SingleNumber = {};

    std::string_view Concat = "@1 || @2";
    std::string_view CaseBlindEqual = "LOWER(@1) = LOWER(@2)";
    std::string_view CaseBlindLike = "LOWER(@1) LIKE LOWER(@2)";
    // In a pattern these characters are meant as they stand behind the escape character, which a clause
    // behind LIKE names.
    std::string_view PatternSpecial = "%_!";
    char PatternEscape = '!';
    std::string_view PatternClause = " ESCAPE '!'";
    std::string_view NullSafeEqual = {};
    bool DistinctSpoilsTotals = false; // an average beside other totals comes out wrong under DISTINCT
    std::string_view Limit = {};       // the last line of a statement that gives the first @1 rows
    TDatePatterns Part = {};           // as a number
    TDatePatterns Truncate = {};       // the first day, or moment, of the part
};

extern const TDialect StandardDialect;
extern const TDialect SQLiteDialect;
extern const TDialect PostgreSQLDialect;
extern const TDialect MySQLDialect; // and MariaDB
extern const TDialect OracleDialect;
// The standard's where joins are written as Oracle has them: its dates, as a strict query writes them and as
// they always were.
extern const TDialect OracleJoinsDialect;
extern const TDialect PlainOracleJoinsDialect;

// The dialect that a query is written in. An engine that is named decides; otherwise the syntax does.
const TDialect& EffectiveDialect(TSQLDialect dialect, TSQLSyntax syntax, bool strict);

// The pattern with its operands in their places.
std::string FillPattern(std::string_view pattern, std::initializer_list<std::string_view> operands);
// How names are quoted.
TNameQuoting QuotingOf(const TDialect& dialect, bool strict);
const TDateForm& DateFormOf(const TDialect& dialect, TFieldType type);
// Whether a text can't stand between the quotes of a template.
bool NeedsHexText(const TDialect& dialect, std::string_view text);
// The text as a literal with its quotes.
void AppendTextLiteral(std::string& out, const TDialect& dialect, std::string_view text);
// A text that is to be found as it stands, as part of a pattern of LIKE; without quotes.
void AppendEscapedPattern(std::string& out, const TDialect& dialect, std::string_view text);

} // namespace lumora
