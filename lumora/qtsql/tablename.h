// Names of tables as a model has them.
#pragma once

#include "lumora/qtsql/engine.h"

#include <string>
#include <string_view>

namespace lumora {

// A table in a database's own spelling.
struct TableName {
    std::string schema; // empty: the engine finds the table without
    std::string name;
};

// The name of the model's table: the bare name where that says enough (the model then knows whether it needs
// quotes), otherwise what stands in a statement: sales.orders, "Sales"."Order Lines".
std::string toModelName(Engine engine, const TableName& table);
// The other way round. What is no well-formed name stands for itself.
TableName fromModelName(std::string_view text);

// The name between double quotes, quotes inside doubled.
std::string quotedName(std::string_view name);

} // namespace lumora
