// The filters of datasets: a condition over the columns of a row, parsed once and evaluated row by row.
//
//     condition   = condition "or" condition | condition "and" condition | "not" condition
//                 | "(" condition ")" | comparison
//     comparison  = value ("=" | "<>" | "!=" | "<" | ">" | "<=" | ">=") value
//                 | value "is" ["not"] "null"
//                 | value ["not"] "in" "(" value {"," value} ")"
//                 | value ["not"] "between" value "and" value
//                 | value ["not"] "like" string ["escape" string]
//     value       = column | string | ["-" | "+"] number | "true" | "false" | "null"
//
// A column is a bare name, a name in "double quotes" or in [brackets] (the closing one doubled inside); names
// and words are taken without regard to case. A string stands in single quotes, doubled inside. Line breaks
// are blanks. "not" binds closest, then "and", then "or".
//
// "*" in a string after = and <> stands for any text, as "%" does in a pattern of "like", where "_" is any
// one character. Elsewhere (in, between, like, < and so on) "*" is itself: "name in ('a*b')" finds a name
// that holds one.
//
// Text is compared with other values by reading it as what it is compared with. A comparison with a null, or
// with what cannot be read, is neither true nor false, as in SQL.
#pragma once

#include "lumora/platform/errors.h"
#include "lumora/platform/filter_pattern.h"
#include "lumora/platform/filter_value.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

// A filter that cannot be read or does not fit the columns.
class EFilterError : public Exception {
public:
    EFilterError(const std::string& message, int position)
        : Exception(message + " at position " + std::to_string(position)), Position(position) {}

    const int Position; // the character at which it is noticed, from 1
};

// Parentheses nest no deeper.
inline constexpr int MaxFilterNesting = 5000;

enum TFilterTruth : std::uint8_t { ftrFalse, ftrUnknown, ftrTrue };

struct TFilterColumn {
    std::string Name;
    TFieldType Type = ftUnknown; // where it is not known, each value is taken as it comes
};

// Where a row's values come from; a value that is not of its column's type is read as one.
class TFilterValueSource {
public:
    virtual ~TFilterValueSource() = default;
    virtual TFilterValue Value(int column) const = 0; // by the index that the column was bound with
};

namespace detail {

enum TFilterTest : std::uint8_t {
    tstEqual,
    tstNotEqual,
    tstLess,
    tstLessOrEqual,
    tstGreater,
    tstGreaterOrEqual,
    tstIsNull,
    tstIn,
    tstBetween,
    tstLike
};

struct TFilterOperand {
    int Column = -1; // in the list of the filter's columns, then of those it is bound to; -1 for a literal
    TFilterValueKind Kind = fvkNull; // what a column's values are read as
    TFilterValue Value;              // of a literal
    int Position = 1;
};

struct TFilterComparison {
    TFilterTest Test = tstEqual;
    bool Negated = false;
    bool Sorted = false; // the values of "in" can be searched by halves
    bool HasPattern = false;
    TFilterOperand Left;
    std::vector<TFilterOperand> Right;
    TFilterPattern Pattern;
};

enum TFilterStepKind : std::uint8_t { stpTest, stpAnd, stpOr, stpNot, stpSkipIfFalse, stpSkipIfTrue };

// A condition is worked out on a stack of truth values.
struct TFilterStep {
    TFilterStepKind Kind;
    std::size_t Index = 0; // which comparison, or the step to go on with
};

struct TFilterColumnName {
    std::string Name;
    std::size_t LastPart = 0; // where the part behind the last "." that stands outside quotes begins
    int Position = 1;
};

struct TFilterProgram {
    std::vector<TFilterStep> Steps; // none: everything is accepted
    std::vector<TFilterComparison> Comparisons;
    std::vector<TFilterColumnName> Columns;
};

// EFilterError for a text that is no filter.
TFilterProgram ParseFilter(std::string_view text, const TFilterOptions& options);

} // namespace detail

class TFilterExpression {
public:
    TFilterExpression() = default; // accepts everything, as an empty text does
    // EFilterError for a text that is no filter.
    explicit TFilterExpression(std::string_view text, TFilterOptions options = {});

    // The names of the columns that the text uses, each once.
    std::vector<std::string> ColumnNames() const;
    // Finds the filter's columns among those of the rows to come, and reads its literals as their types. Of
    // columns with one name the first counts; a name "table.column" that is not found stands for "column".
    // EFilterError for a column that is not there and a literal that is not of its type; the filter is then
    // bound as before.
    void Bind(std::span<const TFilterColumn> columns);

    // The columns that a bound filter reads, by their indexes, each once.
    const std::vector<int>& BoundColumns() const { return places_; }

    // Of a row. EFilterError when the filter has columns and is not bound.
    TFilterTruth Evaluate(const TFilterValueSource& row) const;
    bool Accepts(const TFilterValueSource& row) const { return Evaluate(row) == ftrTrue; }

private:
    void BindColumn(detail::TFilterOperand& operand, std::span<const int> places,
                    std::span<const TFilterColumn> columns) const;
    void BindComparison(detail::TFilterComparison& comparison, std::span<const TFilterColumn> columns) const;
    void BindLiteral(detail::TFilterOperand& operand, TFilterValueKind kind, const std::string& column) const;
    TFilterValue Read(const detail::TFilterOperand& operand, const TFilterValueSource& row) const;
    TFilterTruth Test(const detail::TFilterComparison& comparison, const TFilterValueSource& row) const;
    TFilterTruth TestPattern(const detail::TFilterComparison& comparison, const TFilterValue& value) const;
    TFilterTruth TestIn(const detail::TFilterComparison& comparison, const TFilterValue& value,
                        const TFilterValueSource& row) const;
    TFilterTruth TestOrder(detail::TFilterTest test, const TFilterValue& value,
                           const detail::TFilterOperand& operand, const TFilterValueSource& row) const;

    TFilterOptions options_;
    detail::TFilterProgram program_;
    std::vector<detail::TFilterComparison> bound_;
    std::vector<int> places_;
    bool isBound_ = true;
    mutable std::vector<TFilterTruth> stack_;
};

// A column name that a filter takes without quotes.
bool IsFilterName(std::string_view name);

} // namespace lumora
