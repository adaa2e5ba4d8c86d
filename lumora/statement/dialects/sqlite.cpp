// SQLite. It compares dates as text, so they are written as the model says that they are stored.
#include "lumora/statement/dialects/dialect.h"

namespace lumora {

constinit const TDialect SQLiteDialect{
    .NameQuotes = "\"\"``[]",
    .DoubleQuotedTexts = true,
    .DefaultSchema = "main",
    .ComparesDatesAsText = true,
    .True = "1",
    .False = "0",
    .CaseBlindLike = "@1 LIKE @2",
    .NullSafeEqual = "@1 IS @2",
    .Limit = "LIMIT @1",
    .Part = {.Year = "CAST(strftime('%Y', @1) AS INTEGER)",
             .Quarter = "((CAST(strftime('%m', @1) AS INTEGER) + 2) / 3)",
             .Month = "CAST(strftime('%m', @1) AS INTEGER)",
             .Week = "((CAST(strftime('%j', date(@1, '-3 days', 'weekday 4')) AS INTEGER) - 1) / 7 + 1)",
             .Day = "CAST(strftime('%d', @1) AS INTEGER)",
             .Hour = "CAST(strftime('%H', @1) AS INTEGER)"},
    .Truncate = {.Year = "date(@1, 'start of year')",
                 .Quarter =
                     "date(@1, 'start of month', '-' || ((CAST(strftime('%m', @1) AS INTEGER) - 1) % 3) "
                     "|| ' months')",
                 .Month = "date(@1, 'start of month')",
                 .Week = "date(@1, '-' || ((CAST(strftime('%w', @1) AS INTEGER) + 6) % 7) || ' days')",
                 .Day = "date(@1)",
                 .Hour = "strftime('%Y-%m-%d %H:00:00', @1)"},
};

} // namespace lumora
