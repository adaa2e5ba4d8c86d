#include "lumora/query/column_total.h"

#include "lumora/model/structure.h"
#include "lumora/platform/ascii.h"
#include "lumora/query/result_fields.h"
#include "lumora/support/messages.h"

#include <algorithm>
#include <array>

namespace lumora {

namespace {

constexpr std::array<std::string_view, ctFormula> Formulas = {
    "@1", "count(@1)", "count(distinct @1)", "sum(@1)", "avg(@1)", "min(@1)", "max(@1)"};

// "Name" and "Name2", as captions are told apart.
bool IsNumbered(std::string_view caption, std::string_view name) {
    return caption.substr(0, name.size()) == name &&
           std::all_of(caption.begin() + static_cast<std::ptrdiff_t>(name.size()), caption.end(), IsDigit);
}

const TDSField* OnlyField(const TResultField& column) {
    return column.GetFields().size() == 1 ? column.GetFields().front() : nullptr;
}

} // namespace

TColumnTotal TotalOf(const TResultField& column) {
    if (!OnlyField(column))
        return ctFormula;
    const auto found = std::find(Formulas.begin(), Formulas.end(), LowerAscii(column.GetFormula()));
    return static_cast<TColumnTotal>(found - Formulas.begin());
}

std::string_view TotalFormula(TColumnTotal total) {
    return total < ctFormula ? Formulas[total] : std::string_view();
}

bool IsRecordNumber(const TDSField& field) {
    if (!field.GetTable() || field.GetKind() != vfkData)
        return false;
    const std::string name = LowerAscii(field.GetFieldText());
    std::string table = LowerAscii(field.GetTable()->GetName());
    if (!table.empty() && table.back() == 's' && name.substr(0, table.size()) != table)
        table.pop_back();
    return field.FieldType == ftAutoInc || name == "id" || name == table + "id" || name == table + "_id";
}

std::string CountedWords(TColumnTotal total, const TDSField& field) {
    const std::string counted = IsRecordNumber(field)
                                    ? field.GetTable()->GetDisplayName()
                                    : FormatText(Message(msgValuesOf), {field.GetDisplayName()});
    return total == ctCountDifferent ? FormatText(Message(msgDifferentOnes), {counted}) : counted;
}

std::string TotalCaption(TColumnTotal total, const TDSField& field) {
    switch (total) {
    case ctCount:
    case ctCountDifferent:
        return FormatText(Message(msgCountCaption), {CountedWords(total, field)});
    case ctSum:
        return FormatText(Message(msgSumCaption), {field.GetDisplayName()});
    case ctAverage:
        return FormatText(Message(msgAverageCaption), {field.GetDisplayName()});
    case ctLeast:
        return FormatText(Message(msgLeastCaption), {field.GetDisplayName()});
    case ctGreatest:
        return FormatText(Message(msgGreatestCaption), {field.GetDisplayName()});
    case ctValue:
    case ctFormula:
        break;
    }
    return field.GetDisplayName();
}

bool HasOwnCaption(const TResultField& column) {
    const TDSField* const field = OnlyField(column);
    for (int total = ctValue; field && total < ctFormula; ++total)
        if (IsNumbered(column.GetCaption(), TotalCaption(static_cast<TColumnTotal>(total), *field)))
            return true;
    return false;
}

void SetTotal(TResultField& column, TColumnTotal total) {
    const TDSField* const field = OnlyField(column);
    if (!field || total == ctFormula || total == TotalOf(column))
        return;
    const bool follows = HasOwnCaption(column);
    column.SetFormula(std::string(TotalFormula(total)));
    const std::string caption = TotalCaption(total, *field);
    if (follows && !IsNumbered(column.GetCaption(), caption))
        column.SetCaption(column.GetOwner().GetUniqCaption(caption));
}

std::string ColumnHeading(const TResultField& column) {
    const TColumnTotal total = TotalOf(column);
    const bool isTotal = total != ctValue && total != ctFormula;
    const bool misleads = isTotal && IsNumbered(column.GetCaption(), OnlyField(column)->GetDisplayName());
    return misleads ? TotalCaption(total, *OnlyField(column)) : column.GetCaption();
}

} // namespace lumora
