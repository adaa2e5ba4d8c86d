#include "lumora/reading/moment_literals.h"

#include "lumora/model/structure.h"
#include "lumora/platform/ascii.h"
#include "lumora/platform/convert.h"
#include "lumora/query/date_values.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/moment_column.h"

#include <cmath>

namespace lumora {

namespace {

const TDSField* FieldOf(const TFilterCond& condition) {
    return condition.GetRowType() == frtSimpleCondition
               ? static_cast<const TSimpleCond&>(condition).GetField()
               : nullptr;
}

// Whether a day as the value means its first moment: what lies before it, or from it on.
bool ComparesWithStart(const TFilterCond& condition, int value) {
    const TSQLTemplate* const pattern = condition.GetTemplate();
    if (!pattern)
        return false;
    for (const TComparisonPiece& piece : pattern->GetComparisons())
        if (piece.Kind == TComparisonPiece::Comparison &&
            (piece.Value == value || piece.SecondValue == value)) {
            const bool isFirstOfTwo = piece.SecondValue != 0 && piece.SecondValue != value;
            return isFirstOfTwo || piece.Operator == cmLess || piece.Operator == cmGreaterOrEqual;
        }
    return false;
}

class TLiteralReader {
public:
    TLiteralReader(const TVCustomDBStructure& model, const TDialect& dialect, TFieldType type,
                   TDateStorage storage)
        : formats_(model.GetSQLFormats()),
          dialect_(dialect),
          type_(type),
          storage_(storage),
          column_(type, storage, formats_, dialect, false) {}

    std::optional<std::string> Read(std::string_view literal, bool quoted, bool isStart) const {
        const std::optional<std::int64_t> moment = MomentOf(literal, quoted);
        if (!moment)
            return std::nullopt;
        const std::string text = TextFor(*moment, isStart);
        return IsSame(literal, text, *moment, isStart) ? std::optional(text) : std::nullopt;
    }

private:
    std::optional<std::int64_t> MomentOf(std::string_view literal, bool quoted) const {
        if (IsNumberStorage(storage_))
            return quoted ? std::nullopt : MomentOfNumber(literal);
        const std::optional<TReadDateTime> read = storage_ == dsAsType
                                                      ? ReadSQLDate(formats_, type_, literal)
                                                      : ReadDateTime(literal, IsoFormatSettings());
        if (!read || read->Precision == dpFiner || !read->HasDate)
            return std::nullopt;
        return ToMilliseconds(read->Value);
    }

    std::optional<std::int64_t> MomentOfNumber(std::string_view literal) const {
        const std::optional<double> number = TryStrToFloat(literal);
        constexpr double epochStart = 25569.0 * MillisecondsADay, julianStart = 2415018.5;
        if (!number || std::fabs(*number) > 1e14)
            return std::nullopt;
        const double milliseconds = storage_ == dsEpochSeconds ? *number * 1000 + epochStart
                                    : storage_ == dsEpochMilliseconds
                                        ? *number + epochStart
                                        : (*number - julianStart) * MillisecondsADay;
        return static_cast<std::int64_t>(std::floor(milliseconds + 0.75)); // a bound stands half a one before
    }

    // At its start a day is its first moment; elsewhere midnight must be said.
    std::string TextFor(std::int64_t moment, bool isStart) const {
        const bool isDay = storage_ == dsDay || (storage_ == dsAsType && type_ == ftDate);
        const bool isWhole = moment % 1000 == 0 &&
                             (isStart || !(storage_ == dsMomentFraction || storage_ == dsEpochMilliseconds));
        const TDatePrecision precision = isDay || (isStart && moment % MillisecondsADay == 0) ? dpDay
                                         : isWhole                                            ? dpSecond
                                                                                              : dpMillisecond;
        return ExactDateTimeToStr(OfMilliseconds(moment), precision);
    }

    // Whether the text is the same value, and what would be written for it compares as the literal does.
    bool IsSame(std::string_view literal, std::string_view text, std::int64_t moment, bool isStart) const {
        const std::optional<TReadDateTime> again = ReadDateTime(text);
        if (!again || ToMilliseconds(again->Value) != moment)
            return false;
        std::string point, bound;
        column_.AppendPoint(point, moment);
        column_.AppendBound(bound, moment);
        if (storage_ == dsAsType && !dialect_.ComparesDatesAsText) {
            const std::optional<TReadDateTime> written = ReadSQLDate(formats_, type_, point);
            return written && ToMilliseconds(written->Value) == moment;
        }
        const bool isMidnight = moment % MillisecondsADay == 0;
        if (isStart && (bound == literal || bound == '\'' + std::string(literal) + '\''))
            return storage_ != dsMixedText || isMidnight;
        return point == literal && storage_ != dsMixedText && storage_ != dsJulianDay;
    }

    const TSQLFormats& formats_;
    const TDialect& dialect_;
    TFieldType type_;
    TDateStorage storage_;
    TMomentColumn column_;
};

std::optional<std::string> ReadTime(const TSQLFormats& formats, std::string_view literal) {
    const std::optional<TReadDateTime> read = ReadSQLDate(formats, ftTime, literal);
    return read && read->Precision != dpFiner ? std::optional(ExactTimeToStr(read->Value)) : std::nullopt;
}

} // namespace

std::optional<std::string> ValueOfMomentLiteral(const TVCustomDBStructure& model, const TDialect& dialect,
                                                const TFilterCond& condition, int value,
                                                std::string_view literal, bool quoted) {
    const TFieldType type = condition.GetValueType(value);
    if (type == ftTime)
        return ReadTime(model.GetSQLFormats(), literal);
    const TDSField* const field = FieldOf(condition);
    const bool keepsDays = field && (field->FieldType == ftDate || field->FieldType == ftDateTime);
    const TLiteralReader reader(model, dialect, keepsDays ? field->FieldType : type,
                                keepsDays ? field->Storage : dsAsType);
    return reader.Read(literal, quoted, ComparesWithStart(condition, value));
}

} // namespace lumora
