// What a strict query demands of texts before they become part of a statement.
#pragma once

#include "platform/field_types.h"

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

// Raises EVQueryPanelError, 'Invalid value "TEXT" for "CAPTION"', unless the text is one SQL expression (or
// sub-query) that ends where it ends: brackets pair up, quotes are closed, no ";" and no comment.
void CheckExpression(std::string_view text, std::string_view caption);
[[noreturn]] void RaiseInvalidValue(std::string_view text, std::string_view caption);

} // namespace lumora
