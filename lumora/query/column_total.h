// What a column of a query shows of its field: each value, or a total of them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lumora {

class TDSField;
class TResultField;

enum TColumnTotal : std::uint8_t {
    ctValue, // each value
    ctCount,
    ctCountDifferent,
    ctSum,
    ctAverage,
    ctLeast,
    ctGreatest,
    ctFormula // any other formula
};

TColumnTotal TotalOf(const TResultField& column);
// The formula over one field; none for ctFormula.
std::string_view TotalFormula(TColumnTotal total);
// Whether each record of the field's table has its own value in the field, so that counting the values counts
// the records.
bool IsRecordNumber(const TDSField& field);
// What is counted, in the words of a count: "Orders", "values of City", "different values of City".
std::string CountedWords(TColumnTotal total, const TDSField& field);

// The caption that a column gets by itself: "Number of Orders"; of each value the field's.
std::string TotalCaption(TColumnTotal total, const TDSField& field);
// Whether the column's caption was made so (for whatever total, and with a number behind it), and not typed.
bool HasOwnCaption(const TResultField& column);
// Makes the column show another total of its only field. A caption that was made by itself follows.
void SetTotal(TResultField& column, TColumnTotal total);
// The heading over the column's values: its caption, but that of a total never passes for the field itself.
std::string ColumnHeading(const TResultField& column);

} // namespace lumora
