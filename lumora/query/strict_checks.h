// What a strict query demands of texts before they become part of a statement.
#pragma once

#include "lumora/platform/field_types.h"
#include "lumora/statement/dialects/dialect.h"

#include <string_view>

namespace lumora {

// A name that SQL takes without quotes: letters, digits, "_" and bytes from 128 up, not a reserved word.
bool IsPlainName(std::string_view name);
// A parameter's name: letters, digits, "_" and bytes from 128 up.
bool IsParamName(std::string_view name);

// Integers, decimal numbers, booleans, dates and times: types whose values are checked by their form.
bool IsCheckedType(TFieldType type);
// Whether the text, blanks around it dropped, is a value of a checked type.
bool IsValidValue(TFieldType type, std::string_view text);

// Both raise EVQueryPanelError, 'Invalid value "TEXT" for "CAPTION"', for a text that could leave its place
// in a statement: brackets must pair up and quotes be closed; ";", comments and quoting that only some
// databases know are refused, but for that of the dialect. An expression is one, without a "," or the words
// of clauses outside brackets; a sub-query begins with SELECT.
void CheckExpression(std::string_view text, std::string_view caption,
                     const TDialect& dialect = StandardDialect);
void CheckSubQuery(std::string_view text, std::string_view caption,
                   const TDialect& dialect = StandardDialect);
// Whether value `value` has all the room between the quotes around it, where there are any: a list or a
// sub-query takes their place, and anything else between them would be lost.
bool StandsAlone(std::string_view sqlTemplate, int value);
// Whether an expression calls an aggregate function; what stands in quotes is none.
bool CallsAggregate(std::string_view expression, const TDialect& dialect = StandardDialect);
// Whether an expression is one number, perhaps with signs and brackets: in ORDER BY it would be a position.
bool IsNumberConstant(std::string_view expression);
[[noreturn]] void RaiseInvalidValue(std::string_view text, std::string_view caption);

} // namespace lumora
