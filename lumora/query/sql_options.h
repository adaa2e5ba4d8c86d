// Options of the SQL that is made.
#pragma once

#include "lumora/model/sql_syntax.h"
#include "lumora/platform/enum_names.h"
#include "lumora/platform/enum_set.h"
#include "lumora/statement/sql_dialect.h"

#include <cstdint>

namespace lumora {

enum TSQLOption : std::uint8_t {
    soASCIIRFields,      // aliases of ASCII letters, digits and "_" only
    soSelectDistinct,    // SELECT DISTINCT
    soQuoteAliases,      // aliases between the model's quote symbols
    soBracketJoins,      // JOIN clauses nested in parentheses
    soBracketConditions, // links and conditions in WHERE in parentheses
    soSortByNames        // ORDER BY expressions instead of positions
};
template <>
struct TEnumNames<TSQLOption> {
    static constexpr std::string_view Names[] = {"soASCIIRFields", "soSelectDistinct",    "soQuoteAliases",
                                                 "soBracketJoins", "soBracketConditions", "soSortByNames"};
};
using TSQLOptions = TEnumSet<TSQLOption>;
inline constexpr TSQLOptions DefaultSQLOptions = {soASCIIRFields, soSelectDistinct};

enum TSortingType : std::uint8_t { stNoSort, stAscending, stDescending };
template <>
struct TEnumNames<TSortingType> {
    static constexpr std::string_view Names[] = {"stNoSort", "stAscending", "stDescending"};
};

} // namespace lumora
