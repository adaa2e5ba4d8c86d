// Checks of a table that leave a column a few values.
#pragma once

#include "lumora/qtsql/catalogue.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

struct CheckedColumn {
    std::string column;
    std::vector<std::string> choices; // as texts, without their quotes; empty: any
};

// What a condition says when it says nothing else than that one column has one of some values, or none:
// "(x in ('a', 'b'))", "((x)::text = ANY (ARRAY['a'::text, 'b'::text]))". No choices otherwise.
CheckedColumn choicesOfCheck(std::string_view condition);

// Gives the choices to their column, unless it has some.
void takeChoices(std::vector<ColumnInfo>& columns, CheckedColumn checked);

// The conditions, without their parentheses, behind each CHECK of a table's definition.
std::vector<std::string_view> checksOf(std::string_view tableDefinition);

} // namespace lumora
