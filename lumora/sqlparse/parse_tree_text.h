// A parse tree as lines that a person can read.
#pragma once

#include "lumora/platform/string_list.h"
#include "lumora/sqlparse/parse_tree.h"

namespace lumora {

// Adds one line for each result field, table and node; nodes are indented by two blanks a level.
void ParseTreeToStrings(const TVParserResult& result, TStringList& lines);

} // namespace lumora
