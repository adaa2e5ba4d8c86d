// The engines whose SQL can be written.
#pragma once

#include "lumora/platform/enum_names.h"

#include <cstdint>

namespace lumora {

enum TSQLDialect : std::uint8_t { sdStandard, sdSQLite, sdPostgreSQL, sdMySQL, sdOracle };
template <>
struct TEnumNames<TSQLDialect> {
    static constexpr std::string_view Names[] = {"sdStandard", "sdSQLite", "sdPostgreSQL", "sdMySQL",
                                                 "sdOracle"};
};

} // namespace lumora
