// Oracle. It has no truth values before version 23 and no FETCH before 12c.
#include "lumora/statement/dialects/dialect.h"

namespace lumora {

namespace {

constexpr TDateForm OracleDate{"dd-mm-yyyy", "TO_DATE('", "', 'dd-mm-yyyy')", true};
constexpr TDateForm OracleTime{"hh:nn:ss", "TO_DATE('", "', 'hh24:mi:ss')", true};
constexpr TDateForm OracleDateTime{"dd-mm-yyyy hh:nn:ss", "TO_DATE('", "', 'dd-mm-yyyy hh24:mi:ss')", true};
// As it always was: in the quotes of the template, with double quotes inside, and the date alone.
constexpr TDateForm OldOracleDate{"dd-mm-yyyy", "TO_DATE(\"", "\", \"dd-mm-yyyy\")", false};

} // namespace

constinit const TDialect OracleDialect{
    .NameQuotes = "\"\"",
    .Date = OracleDate,
    .Time = OracleTime,
    .DateTime = OracleDateTime,
    .True = "1",
    .False = "0",
    .NullSafeEqual = "DECODE(@1, @2, 1, 0) = 1",
    .Limit = "FETCH FIRST @1 ROWS ONLY",
    .Part = {.Year = "EXTRACT(YEAR FROM @1)",
             .Quarter = "TO_NUMBER(TO_CHAR(@1, 'Q'))",
             .Month = "EXTRACT(MONTH FROM @1)",
             .Week = "TO_NUMBER(TO_CHAR(@1, 'IW'))",
             .Day = "EXTRACT(DAY FROM @1)",
             .Hour = "TO_NUMBER(TO_CHAR(@1, 'HH24'))"},
    .Truncate = {.Year = "TRUNC(@1, 'YYYY')",
                 .Quarter = "TRUNC(@1, 'Q')",
                 .Month = "TRUNC(@1, 'MM')",
                 .Week = "TRUNC(@1, 'IW')",
                 .Day = "TRUNC(@1)",
                 .Hour = "TRUNC(@1, 'HH24')"},
};

constinit const TDialect OracleJoinsDialect{
    .Exact = false, .Date = OracleDate, .Time = OracleTime, .DateTime = OracleDateTime};

constinit const TDialect PlainOracleJoinsDialect{
    .Exact = false, .Date = OldOracleDate, .Time = OldOracleDate, .DateTime = OldOracleDate};

} // namespace lumora
