#include "lumora/query/moment_comparison.h"

#include "lumora/model/structure.h"
#include "lumora/platform/ascii.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/strict_checks.h"
#include "lumora/query/value_text.h"

#include <algorithm>

namespace lumora {

namespace {

bool IsDay(TFieldType type) {
    return type == ftDate || type == ftDateTime;
}

const std::vector<TComparisonPiece>& PiecesOf(const TSimpleCond& condition) {
    static const std::vector<TComparisonPiece> none;
    const bool comparesDays =
        condition.GetField() && IsDay(condition.GetField()->FieldType) && IsDay(condition.GetValueType(1));
    return comparesDays ? condition.GetTemplate()->GetComparisons() : none;
}

TMomentColumn ColumnOf(const TSimpleCond& condition, const TVCustomDBStructure& model,
                       const TDialect& dialect) {
    const TFieldType type = condition.GetField() ? condition.GetField()->FieldType : ftUnknown;
    const TDateStorage storage = condition.GetField() ? condition.GetField()->Storage : dsAsType;
    return {type, storage, model.GetSQLFormats(), dialect, model.GetQuotedTypes().Contains(type)};
}

} // namespace

TMomentComparison::TMomentComparison(const TSimpleCond& condition, const TVCustomDBStructure& model,
                                     const TDialect& dialect)
    : column_(ColumnOf(condition, model, dialect)), pieces_(PiecesOf(condition)) {
    const bool isList = condition.GetValueKind(1) == vkList;
    for (const TComparisonPiece& piece : pieces_) {
        const bool takesList = piece.Operator == cmInList || piece.Operator == cmNotInList;
        if (piece.Kind == TComparisonPiece::Comparison && takesList != isList)
            return;
    }
    if (!pieces_.empty() && condition.GetValueKind(1) != vkSubQuery)
        ReadValues(condition);
}

void TMomentComparison::ReadValues(const TSimpleCond& condition) {
    const int count = condition.GetValueCount();
    for (int value = 1; value <= count; ++value)
        if (condition.GetValueIsParam(value))
            return;
    for (int value = 1; value <= std::min(count, 2); ++value)
        if (condition.GetValueKind(value) == vkList)
            for (const std::string& item : SplitListValue(condition.GetValue(value)))
                ReadValue(condition, value, item);
        else
            ReadValue(condition, value, condition.GetValue(value));
    const auto isStretch = [](const TStretch& value) { return !value.IsPoint; };
    isNeeded_ = std::any_of(first_.begin(), first_.end(), isStretch) ||
                std::any_of(second_.begin(), second_.end(), isStretch);
}

void TMomentComparison::ReadValue(const TSimpleCond& condition, int value, std::string_view text) {
    text = Trim(text);
    const std::optional<TReadDateTime> read = ReadDateTime(text);
    if (!read || !IsValidValue(condition.GetValueType(value), text) || !column_.CanKeep(*read))
        RaiseInvalidValue(text, condition.GetCaptionText());
    (value == 1 ? first_ : second_).push_back(column_.StretchOf(*read));
}

class TMomentComparison::TWriter {
public:
    TWriter(std::string& out, const TMomentColumn& column, std::string_view field,
            std::vector<TWrittenValue>& written)
        : out_(out), column_(column), field_(field), written_(written) {}

    // One comparison with one value, and with two.
    void Compare(TComparison comparison, const TStretch& value, int number) {
        number_ = number;
        switch (comparison) {
        case cmEqual:
            return value.IsPoint ? Point("=", value) : Within(value, value, number);
        case cmNotEqual:
            return value.IsPoint ? Point("<>", value) : Outside(value, value, number);
        case cmLess:
            return Bound("<", value.Start);
        case cmLessOrEqual:
            return UpTo(value);
        case cmGreater:
            return Behind(value);
        default:
            return Bound(">=", value.Start);
        }
    }

    void Within(const TStretch& from, const TStretch& to, int second) {
        out_ += '(';
        Bound(">=", from.Start);
        out_ += " AND ";
        number_ = second;
        UpTo(to);
        out_ += ')';
    }
    void Outside(const TStretch& from, const TStretch& to, int second) {
        out_ += '(';
        Bound("<", from.Start);
        out_ += " OR ";
        number_ = second;
        Behind(to);
        out_ += ')';
    }

    void AnyOf(const std::vector<TStretch>& values) {
        out_ += '(';
        for (const TStretch& value : values) {
            out_ += &value == &values.front() ? "" : " OR ";
            Compare(cmEqual, value, 1);
        }
        out_ += ')';
    }

    int number_ = 1; // of the value that is written

private:
    void UpTo(const TStretch& value) {
        if (value.IsPoint || column_.IsAfterTime(value.Next))
            Point("<=", value);
        else
            Bound("<", value.Next);
    }
    void Behind(const TStretch& value) {
        if (value.IsPoint || column_.IsAfterTime(value.Next))
            Point(">", value);
        else
            Bound(">=", value.Next);
    }

    void Bound(std::string_view op, std::int64_t bound) {
        column_.AppendColumn(out_, field_, bound);
        out_.append(" ").append(op).append(" ");
        const std::size_t start = out_.size();
        column_.AppendBound(out_, bound);
        written_.push_back({start, out_.size(), number_});
    }
    void Point(std::string_view op, const TStretch& value) {
        out_.append(field_).append(" ").append(op).append(" ");
        const std::size_t start = out_.size();
        column_.AppendLiteral(out_, value.IsPoint ? value.Start : value.Next - 1);
        written_.push_back({start, out_.size(), number_});
    }

    std::string& out_;
    const TMomentColumn& column_;
    const std::string_view field_;
    std::vector<TWrittenValue>& written_;
};

void TMomentComparison::Append(std::string& out, std::string_view field,
                               std::vector<TWrittenValue>& written) const {
    TWriter writer(out, column_, field, written);
    const auto valueOf = [this](int number) -> const TStretch& {
        return number == 1 ? first_.front() : second_.front();
    };
    for (const TComparisonPiece& piece : pieces_) {
        if (piece.Kind == TComparisonPiece::Literal) {
            out += piece.Text;
        } else if (piece.Kind == TComparisonPiece::Field) {
            out += field;
        } else if (piece.Operator == cmInList || piece.Operator == cmNotInList) {
            out += piece.Operator == cmNotInList ? "NOT " : "";
            writer.AnyOf(first_);
        } else if (piece.SecondValue == 0) {
            writer.Compare(piece.Operator, valueOf(piece.Value), piece.Value);
        } else {
            writer.number_ = piece.Value;
            if (piece.Operator == cmBetween)
                writer.Within(valueOf(piece.Value), valueOf(piece.SecondValue), piece.SecondValue);
            else
                writer.Outside(valueOf(piece.Value), valueOf(piece.SecondValue), piece.SecondValue);
        }
    }
}

} // namespace lumora
