#include "lumora/screen/row_problems.h"

#include "lumora/model/structure.h"
#include "lumora/platform/convert.h"
#include "lumora/platform/formats.h"
#include "lumora/query/errors.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/query/strict_checks.h"
#include "lumora/query/value_text.h"
#include "lumora/screen/query_screen.h"
#include "lumora/screen/screen_words.h"
#include "lumora/support/messages.h"

namespace lumora {

namespace {

std::string InvalidValue(std::string_view text, std::string_view caption) {
    return FormatText(Message(msgInvalidValue), {text, caption});
}

std::string SubQueryRefusal(const TFilterCond& condition, std::string_view text) {
    try {
        CheckSubQuery(text, condition.GetCaptionText());
    } catch (const EVQueryPanelError& error) {
        return error.what();
    }
    return {};
}

// Items of a list that are no values; a date list needs each item to be one.
std::string ListRefusal(const TFilterCond& condition, TFieldType type, std::string_view text) {
    for (const std::string& item : SplitListValue(text))
        if (!IsValidValue(type, item))
            return InvalidValue(item, condition.GetCaptionText());
    return {};
}

class TProblemFinder {
public:
    TProblemFinder(const TQueryScreen& screen, TFilterRow& row) : screen_(screen), row_(row) {}

    TRowProblem OfWord(TWordRole role, int value) {
        if (row_.GetRowType() == frtBracket)
            return {};
        if (role == wrValue)
            return OfValue(value);
        if (row_.GetRowType() != frtSimpleCondition)
            return {};
        return role == wrField ? OfField() : role == wrOperator ? OfOperator() : TRowProblem();
    }

    TRowProblem OfRow() {
        if (row_.GetRowType() == frtBracket)
            return {};
        for (const TWordRole role : {wrField, wrOperator})
            if (TRowProblem problem = OfWord(role, 0))
                return problem;
        const int count = static_cast<TFilterCond&>(row_).GetValueCount();
        for (int value = 1; value <= count; ++value)
            if (TRowProblem problem = OfValue(value))
                return problem;
        return {};
    }

private:
    TRowProblem Problem(TRowState state, TWordRole role, std::string text, int value = 0) {
        return {state, &row_, role, value, std::move(text)};
    }

    TRowProblem OfField() {
        const TDSField* const field = static_cast<TSimpleCond&>(row_).GetField();
        if (!field)
            return Problem(rsUnfinished, wrField, Message(msgFieldMissing));
        if (field == screen_.GetQuery().GetDbStruct()->GetUnrecognizedField())
            return Problem(rsWrong, wrField, Message(msgFieldUnknown));
        return {};
    }

    TRowProblem OfOperator() {
        const auto& condition = static_cast<TSimpleCond&>(row_);
        if (!condition.GetOperator())
            return Problem(rsUnfinished, wrOperator,
                           FormatText(Message(msgOperatorMissing), {condition.GetCaptionText()}));
        if (condition.GetOperator() == screen_.GetQuery().GetDbStruct()->GetUnrecognizedOperator())
            return Problem(rsWrong, wrOperator,
                           FormatText(Message(msgOperatorUnknown), {condition.GetCaptionText()}));
        return {};
    }

    TRowProblem OfValue(int value) {
        const auto& condition = static_cast<TFilterCond&>(row_);
        if (value < 1 || value > condition.GetValueCount() || condition.GetValueIsParam(value))
            return {};
        const std::string& text = condition.GetValue(value);
        const TValueKind kind = condition.GetValueKind(value);
        const bool isText = kind == vkScalar && !IsCheckedType(condition.GetValueType(value));
        const bool isEmpty = kind == vkList ? SplitListValue(text).empty()
                             : isText       ? text.empty()
                                            : Trim(text).empty();
        if (isEmpty)
            return Problem(rsUnfinished, wrValue,
                           FormatText(Message(kind == vkSubQuery ? msgSubQueryMissing : msgValueMissing),
                                      {condition.GetCaptionText()}),
                           value);
        if (std::string refusal = ValueRefusal(condition, value, text); !refusal.empty())
            return Problem(rsWrong, wrValue, std::move(refusal), value);
        return {};
    }

    const TQueryScreen& screen_;
    TFilterRow& row_;
};

void AddProblems(const TQueryScreen& screen, TFilterRow& row, std::vector<TRowProblem>& problems) {
    if (!row.GetEnabled())
        return;
    if (TRowProblem problem = RowProblem(screen, row))
        problems.push_back(std::move(problem));
    if (row.GetRowType() != frtBracket)
        return;
    auto& bracket = static_cast<TFilterBracket&>(row);
    for (int i = 0; i < bracket.GetRowCount(); ++i)
        AddProblems(screen, *bracket.GetRow(i), problems);
}

} // namespace

std::string ValueRefusal(const TFilterCond& condition, int value, std::string_view text) {
    if (Trim(text).empty())
        return {};
    const TFieldType type = condition.GetValueType(value);
    switch (condition.GetValueKind(value)) {
    case vkSubQuery:
        return SubQueryRefusal(condition, text);
    case vkList:
        return IsCheckedType(type) ? ListRefusal(condition, type, text) : std::string();
    case vkScalar:
        break;
    }
    return IsCheckedType(type) && !IsValidValue(type, text) ? InvalidValue(text, condition.GetCaptionText())
                                                            : std::string();
}

TRowProblem WordProblem(const TQueryScreen& screen, TFilterRow& row, TWordRole role, int value) {
    return TProblemFinder(screen, row).OfWord(role, value);
}

TRowProblem RowProblem(const TQueryScreen& screen, TFilterRow& row) {
    return TProblemFinder(screen, row).OfRow();
}

namespace {

// Whether a value is greater than another as the engine orders them; texts are left to it.
bool IsGreater(TFieldType type, const std::string& first, const std::string& second) {
    if (IsDateOrTime(type)) {
        const std::optional<TDateTime> from = TryStrToDateTime(first), to = TryStrToDateTime(second);
        return from && to && ToMilliseconds(*from) > ToMilliseconds(*to);
    }
    const std::optional<double> from = TryStrToFloat(first), to = TryStrToFloat(second);
    return IsNumber(type) && from && to && *from > *to;
}

} // namespace

std::string RowRemark(const TFilterRow& row) {
    if (row.GetRowType() != frtSimpleCondition)
        return {};
    const auto& condition = static_cast<const TSimpleCond&>(row);
    const TSQLTemplate* const pattern = condition.GetTemplate();
    if (!pattern || condition.GetValueIsParam(1) || condition.GetValueIsParam(2))
        return {};
    for (const TComparisonPiece& piece : pattern->GetComparisons())
        if (piece.Kind == TComparisonPiece::Comparison && piece.SecondValue != 0 &&
            IsGreater(condition.GetExprType(), condition.GetValue(piece.Value),
                      condition.GetValue(piece.SecondValue)))
            return Message(msgFirstValueGreater);
    return {};
}

std::vector<TRowProblem> PanelProblems(const TQueryScreen& screen) {
    std::vector<TRowProblem> problems;
    if (screen.GetQuery().GetRootBracket())
        AddProblems(screen, *screen.GetQuery().GetRootBracket(), problems);
    return problems;
}

} // namespace lumora
