// How SQL is written: the syntax of joins and the quoting of names.
#pragma once

#include "lumora/platform/enum_names.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace lumora {

enum TSQLSyntax : std::uint8_t {
    ssSQL1,  // tables listed with commas, join conditions in WHERE, no outer joins
    ssSQL2,  // JOIN clauses in FROM
    ssOracle // as ssSQL1, outer joins marked with " (+) "
};
template <>
struct TEnumNames<TSQLSyntax> {
    static constexpr std::string_view Names[] = {"ssSQL1", "ssSQL2", "ssOracle"};
};

enum TNameQuoting : std::uint8_t {
    nqPlain, // a quoted name is put between the quote symbols as it is
    nqStrict // a closing quote symbol inside it is doubled
};

// The pair of symbols that open and close a quoted name.
struct TQuoteSymbols {
    char Open = '"';
    char Close = '"';

    void Append(std::string& out, std::string_view name, TNameQuoting quoting) const;
};

} // namespace lumora
