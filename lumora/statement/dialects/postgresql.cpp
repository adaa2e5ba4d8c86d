// PostgreSQL, with standard_conforming_strings on, as it is from the start.
#include "lumora/statement/dialects/dialect.h"

namespace lumora {

constinit const TDialect PostgreSQLDialect{
    .NameQuotes = "\"\"",
    .DefaultSchema = "public",
    .Date = {.Mask = "yyyy-mm-dd"},
    .Time = {.Mask = "hh:nn:ss.zzz"},
    .DateTime = {.Mask = "yyyy-mm-dd hh:nn:ss.zzz"},
    .True = "TRUE",
    .False = "FALSE",
    .SingleNumber = "CAST(@1 AS REAL)",
    .CaseBlindLike = "@1 ILIKE @2",
    .NullSafeEqual = "@1 IS NOT DISTINCT FROM @2",
    .Limit = "LIMIT @1",
    .Part = {.Year = "CAST(EXTRACT(YEAR FROM @1) AS INTEGER)",
             .Quarter = "CAST(EXTRACT(QUARTER FROM @1) AS INTEGER)",
             .Month = "CAST(EXTRACT(MONTH FROM @1) AS INTEGER)",
             .Week = "CAST(EXTRACT(WEEK FROM @1) AS INTEGER)",
             .Day = "CAST(EXTRACT(DAY FROM @1) AS INTEGER)",
             .Hour = "CAST(EXTRACT(HOUR FROM @1) AS INTEGER)"},
    .Truncate = {.Year = "CAST(date_trunc('year', @1) AS DATE)",
                 .Quarter = "CAST(date_trunc('quarter', @1) AS DATE)",
                 .Month = "CAST(date_trunc('month', @1) AS DATE)",
                 .Week = "CAST(date_trunc('week', @1) AS DATE)",
                 .Day = "CAST(@1 AS DATE)",
                 .Hour = "date_trunc('hour', @1)"},
};

} // namespace lumora
