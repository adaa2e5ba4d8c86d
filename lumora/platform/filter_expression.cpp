#include "lumora/platform/filter_expression.h"

#include "lumora/platform/ascii.h"

#include <algorithm>

namespace lumora {

using namespace detail;

TFilterExpression::TFilterExpression(std::string_view text, TFilterOptions options)
    : options_(std::move(options)),
      program_(ParseFilter(text, options_)),
      bound_(program_.Comparisons),
      isBound_(program_.Columns.empty()) {}

std::vector<std::string> TFilterExpression::ColumnNames() const {
    std::vector<std::string> names;
    for (const TFilterColumnName& column : program_.Columns)
        names.push_back(column.Name);
    return names;
}

// --- Binding.

namespace {

int FindColumn(std::span<const TFilterColumn> columns, std::string_view name) {
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (SameText(columns[i].Name, name))
            return static_cast<int>(i);
    return -1;
}

} // namespace

void TFilterExpression::Bind(std::span<const TFilterColumn> columns) {
    std::vector<int> places;
    for (const TFilterColumnName& column : program_.Columns) {
        int place = FindColumn(columns, column.Name);
        if (place < 0 && column.LastPart > 0)
            place = FindColumn(columns, std::string_view(column.Name).substr(column.LastPart));
        if (place < 0)
            throw EFilterError("Unknown column \"" + column.Name + "\"", column.Position);
        places.push_back(place);
    }
    std::vector<TFilterComparison> bound = program_.Comparisons;
    for (TFilterComparison& comparison : bound) {
        BindColumn(comparison.Left, places, columns);
        for (TFilterOperand& operand : comparison.Right)
            BindColumn(operand, places, columns);
        BindComparison(comparison, columns);
    }
    bound_ = std::move(bound);
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    places_ = std::move(places);
    isBound_ = true;
}

void TFilterExpression::BindColumn(TFilterOperand& operand, std::span<const int> places,
                                   std::span<const TFilterColumn> columns) const {
    if (operand.Column < 0)
        return;
    operand.Column = places[static_cast<std::size_t>(operand.Column)];
    operand.Kind = FilterKindOf(columns[static_cast<std::size_t>(operand.Column)].Type);
}

// Reads the literals as the column's type, once for all rows.
void TFilterExpression::BindComparison(TFilterComparison& comparison,
                                       std::span<const TFilterColumn> columns) const {
    const TFilterValueKind kind = comparison.Left.Kind;
    if (comparison.Test != tstLike && kind != fvkText && kind != fvkNull)
        comparison.HasPattern = false; // only texts have parts
    if (comparison.Left.Column < 0 || kind == fvkNull || comparison.HasPattern)
        return;
    bool sortable = comparison.Test == tstIn;
    for (TFilterOperand& operand : comparison.Right) {
        if (operand.Column < 0)
            BindLiteral(operand, kind, columns[static_cast<std::size_t>(comparison.Left.Column)].Name);
        sortable = sortable && operand.Column < 0 && operand.Value.Kind != fvkNull;
    }
    if (!sortable)
        return;
    std::sort(comparison.Right.begin(), comparison.Right.end(),
              [this](const TFilterOperand& a, const TFilterOperand& b) {
                  return CompareFilterValues(a.Value, b.Value, options_).value_or(0) < 0;
              });
    comparison.Sorted = true;
}

void TFilterExpression::BindLiteral(TFilterOperand& operand, TFilterValueKind kind,
                                    const std::string& column) const {
    const std::optional<TFilterValue> value = ConvertFilterValue(operand.Value, kind, options_);
    if (!value)
        throw EFilterError("\"" + operand.Value.Text + "\" is not a " + std::string(FilterKindName(kind)) +
                               ", as the column \"" + column + "\" has it,",
                           operand.Position);
    operand.Value = *value;
}

// --- Evaluation.

namespace {

TFilterTruth TruthOf(bool value) {
    return value ? ftrTrue : ftrFalse;
}

TFilterTruth Negate(TFilterTruth truth) {
    return static_cast<TFilterTruth>(ftrTrue - truth);
}

TFilterTruth TruthOfOrder(TFilterTest test, int order) {
    switch (test) {
    case tstEqual:
        return TruthOf(order == 0);
    case tstNotEqual:
        return TruthOf(order != 0);
    case tstLess:
        return TruthOf(order < 0);
    case tstLessOrEqual:
        return TruthOf(order <= 0);
    case tstGreater:
        return TruthOf(order > 0);
    default:
        return TruthOf(order >= 0);
    }
}

} // namespace

TFilterTruth TFilterExpression::Evaluate(const TFilterValueSource& row) const {
    if (!isBound_)
        throw EFilterError("The filter has not been bound to columns, among them \"" +
                               program_.Columns[0].Name + "\"",
                           program_.Columns[0].Position);
    if (program_.Steps.empty())
        return ftrTrue;
    stack_.clear();
    for (std::size_t i = 0; i < program_.Steps.size();) {
        const TFilterStep& step = program_.Steps[i++];
        switch (step.Kind) {
        case stpTest:
            stack_.push_back(Test(bound_[step.Index], row));
            break;
        case stpNot:
            stack_.back() = Negate(stack_.back());
            break;
        case stpSkipIfFalse:
        case stpSkipIfTrue:
            if (stack_.back() == (step.Kind == stpSkipIfTrue ? ftrTrue : ftrFalse))
                i = step.Index;
            break;
        case stpAnd:
        case stpOr: {
            const TFilterTruth right = stack_.back();
            stack_.pop_back();
            const TFilterTruth left = stack_.back();
            stack_.back() = step.Kind == stpAnd ? std::min(left, right) : std::max(left, right);
            break;
        }
        }
    }
    return stack_.back();
}

// A value that cannot be read as its column's type counts as null.
TFilterValue TFilterExpression::Read(const TFilterOperand& operand, const TFilterValueSource& row) const {
    if (operand.Column < 0)
        return operand.Value;
    TFilterValue value = row.Value(operand.Column);
    if (operand.Kind == fvkNull || value.Kind == operand.Kind)
        return value;
    return ConvertFilterValue(value, operand.Kind, options_).value_or(TFilterValue());
}

TFilterTruth TFilterExpression::Test(const TFilterComparison& comparison,
                                     const TFilterValueSource& row) const {
    if (comparison.Test == tstIsNull) {
        const TFilterOperand& left = comparison.Left;
        const TFilterValue& value = left.Column < 0 ? left.Value : row.Value(left.Column);
        return TruthOf((value.Kind == fvkNull) != comparison.Negated);
    }
    const TFilterValue value = Read(comparison.Left, row);
    TFilterTruth truth = ftrUnknown;
    if (comparison.HasPattern)
        truth = TestPattern(comparison, value);
    else if (comparison.Test == tstIn)
        truth = TestIn(comparison, value, row);
    else if (comparison.Test == tstBetween)
        truth = std::min(TestOrder(tstGreaterOrEqual, value, comparison.Right[0], row),
                         TestOrder(tstLessOrEqual, value, comparison.Right[1], row));
    else
        truth = TestOrder(comparison.Test, value, comparison.Right[0], row);
    return comparison.Negated ? Negate(truth) : truth;
}

TFilterTruth TFilterExpression::TestPattern(const TFilterComparison& comparison,
                                            const TFilterValue& value) const {
    if (value.Kind == fvkNull)
        return ftrUnknown;
    const bool matches = value.Kind == fvkText
                             ? comparison.Pattern.Matches(value.Text)
                             : comparison.Pattern.Matches(ConvertFilterValue(value, fvkText, options_)->Text);
    return TruthOf(matches != (comparison.Test == tstNotEqual));
}

TFilterTruth TFilterExpression::TestIn(const TFilterComparison& comparison, const TFilterValue& value,
                                       const TFilterValueSource& row) const {
    if (value.Kind == fvkNull)
        return ftrUnknown;
    if (comparison.Sorted) {
        const auto order = [this](const TFilterValue& a, const TFilterValue& b) {
            return CompareFilterValues(a, b, options_).value_or(0);
        };
        const auto found = std::partition_point(
            comparison.Right.begin(), comparison.Right.end(),
            [&](const TFilterOperand& operand) { return order(operand.Value, value) < 0; });
        return TruthOf(found != comparison.Right.end() && order(found->Value, value) == 0);
    }
    TFilterTruth truth = ftrFalse;
    for (const TFilterOperand& operand : comparison.Right)
        truth = std::max(truth, TestOrder(tstEqual, value, operand, row));
    return truth;
}

TFilterTruth TFilterExpression::TestOrder(TFilterTest test, const TFilterValue& value,
                                          const TFilterOperand& operand,
                                          const TFilterValueSource& row) const {
    const std::optional<int> order = operand.Column < 0
                                         ? CompareFilterValues(value, operand.Value, options_)
                                         : CompareFilterValues(value, Read(operand, row), options_);
    return order ? TruthOfOrder(test, *order) : ftrUnknown;
}

} // namespace lumora
