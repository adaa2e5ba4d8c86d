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

// How a quoted name is put between quote symbols.
struct TNameQuoting {
    bool Doubled = false; // a closing quote symbol inside it is doubled
    // The pairs of symbols that the engine takes, its own first; none: the model's symbols, whatever they
    // are.
    const char* Taken = nullptr;
};
inline constexpr TNameQuoting nqPlain{};
inline constexpr TNameQuoting nqStrict{true};

// The pair of symbols that open and close a quoted name.
struct TQuoteSymbols {
    char Open = '"';
    char Close = '"';

    void Append(std::string& out, std::string_view name, TNameQuoting quoting) const;
    // Whether the engine takes these symbols.
    bool AreTaken(TNameQuoting quoting) const;
};

} // namespace lumora
