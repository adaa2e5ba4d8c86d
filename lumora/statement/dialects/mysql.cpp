// MySQL and MariaDB, whatever the modes: a backslash in quotes escapes or does not (NO_BACKSLASH_ESCAPES),
// double quotes are for texts or for names (ANSI_QUOTES), "||" joins texts or is an OR (PIPES_AS_CONCAT).
#include "lumora/statement/dialects/dialect.h"

namespace lumora {

constinit const TDialect MySQLDialect{
    .NameQuotes = "``",
    .HexText = "_utf8mb4 X",
    .HashComments = true,
    .DoubleQuotedTexts = true,
    .Date = {.Mask = "yyyy-mm-dd"},
    .Time = {.Mask = "hh:nn:ss.zzz"},
    .DateTime = {.Mask = "yyyy-mm-dd hh:nn:ss.zzz"},
    .True = "1",
    .False = "0",
    .SingleNumber = "CAST(@1 AS FLOAT)",
    .Concat = "CONCAT(@1, @2)",
    .CaseBlindLike = "@1 LIKE @2",
    .NullSafeEqual = "@1 <=> @2",
    .DistinctSpoilsTotals = true, // MariaDB 10.11: SELECT DISTINCT round(sum(a), 2), avg(b) ... GROUP BY
    .Limit = "LIMIT @1",
    .Part = {.Year = "YEAR(@1)",
             .Quarter = "QUARTER(@1)",
             .Month = "MONTH(@1)",
             .Week = "WEEK(@1, 3)",
             .Day = "DAYOFMONTH(@1)",
             .Hour = "HOUR(@1)"},
    .Truncate = {.Year = "MAKEDATE(YEAR(@1), 1)",
                 .Quarter = "(MAKEDATE(YEAR(@1), 1) + INTERVAL (QUARTER(@1) - 1) QUARTER)",
                 .Month = "(DATE(@1) - INTERVAL (DAYOFMONTH(@1) - 1) DAY)",
                 .Week = "(DATE(@1) - INTERVAL WEEKDAY(@1) DAY)",
                 .Day = "DATE(@1)",
                 .Hour = "(DATE(@1) + INTERVAL HOUR(@1) HOUR)"},
};

} // namespace lumora
