// The standard, and whatever engine the model was made for: its quote symbols and masks rule.
#include "lumora/statement/dialects/dialect.h"

namespace lumora {

constinit const TDialect StandardDialect{
    .Exact = false,
    .DoubleQuotedTexts = true,
    .NullSafeEqual = "@1 IS NOT DISTINCT FROM @2",
    .Limit = "FETCH FIRST @1 ROWS ONLY",
    .Part = {.Year = "EXTRACT(YEAR FROM @1)",
             .Month = "EXTRACT(MONTH FROM @1)",
             .Day = "EXTRACT(DAY FROM @1)",
             .Hour = "EXTRACT(HOUR FROM @1)"},
};

} // namespace lumora
