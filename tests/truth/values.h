// Values as the reference knows them, and what SQL says of them.
#pragma once

#include "lumora/platform/field_types.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace lumora::truth {

// NULL, a number (a boolean is 0 or 1), or a text (dates and times are ISO texts).
using Cell = std::variant<std::monostate, double, std::string>;
using Cells = std::vector<Cell>;

inline bool isNull(const Cell& cell) {
    return cell.index() == 0;
}
inline double number(const Cell& cell) {
    return std::get<double>(cell);
}
inline const std::string& text(const Cell& cell) {
    return std::get<std::string>(cell);
}

// A cell or a row as one text; equal values are equal texts.
std::string show(const Cell& cell);
std::string show(const Cells& cells);

// SQL's three truths in their order: "and" is the lesser of two, "or" the greater.
enum class Truth { no, unknown, yes };
inline Truth operator!(Truth truth) {
    return static_cast<Truth>(2 - static_cast<int>(truth));
}
inline Truth truthOf(bool holds) {
    return holds ? Truth::yes : Truth::no;
}

// `sign` is "=", "<>", "<", "<=", ">" or ">=".
Truth compare(const Cell& left, std::string_view sign, const Cell& right);
Truth in(const Cell& cell, const Cells& list);
// `escape` takes a wildcard's meaning away; 0 for none.
Truth like(const Cell& cell, std::string_view pattern, char escape);

bool isNumberType(TFieldType type); // booleans are none
bool isTextType(TFieldType type);

// What the text of one value means: none when a strict panel refuses it, or when a plain one makes no value
// of it.
std::optional<Cell> meaningOf(TFieldType type, const std::string& text, bool strict);
std::vector<std::string> listItems(const std::string& text);

} // namespace lumora::truth
