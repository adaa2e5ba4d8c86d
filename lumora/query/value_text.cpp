#include "lumora/query/value_text.h"

#include "lumora/model/structure.h"
#include "lumora/platform/convert.h"
#include "lumora/platform/formats.h"
#include "lumora/query/date_values.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/moment_column.h"
#include "lumora/query/strict_checks.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

// Hands each item of a list value to `take`.
template <typename TTake>
void ForEachItem(std::string_view text, TTake take) {
    if (Trim(text).empty())
        return;
    if (text.find('"') == std::string_view::npos) {
        for (std::size_t start = 0; start <= text.size();) {
            const std::size_t end = std::min(text.find(',', start), text.size());
            take(Trim(text.substr(start, end - start)));
            start = end + 1;
        }
        return;
    }
    std::string item;
    std::size_t kept = 0; // the length of the item without blanks behind it
    bool quoted = false;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        const char c = i < text.size() ? text[i] : ',';
        if (i == text.size() || (c == ',' && !quoted)) {
            item.resize(kept);
            take(std::string_view(item));
            item.clear();
            kept = 0;
            quoted = false;
        } else if (c == '"' && quoted && i + 1 < text.size() && text[i + 1] == '"') {
            item += '"';
            kept = item.size();
            ++i;
        } else if (c == '"' && (quoted || item.empty())) {
            quoted = !quoted;
            kept = item.size();
        } else if (quoted || !item.empty() || !IsBlank(c)) {
            item += c;
            if (quoted || !IsBlank(c))
                kept = item.size();
        }
    }
}

} // namespace

std::vector<std::string> SplitListValue(std::string_view text) {
    std::vector<std::string> items;
    ForEachItem(text, [&items](std::string_view item) { items.emplace_back(item); });
    return items;
}

namespace {

// What an empty value becomes.
std::string_view EmptyValue(TFieldType type) {
    switch (type) {
    case ftSmallint:
    case ftInteger:
    case ftWord:
    case ftFloat:
    case ftCurrency:
    case ftAutoInc:
    case ftLargeint:
        return "0";
    case ftBoolean:
        return "False";
    case ftDate:
    case ftTime:
    case ftDateTime:
        return "00/00/00";
    default:
        return {};
    }
}

// The field's caption, or the predefined condition's.
void CheckValue(const TFilterCond& condition, TFieldType type, std::string_view text) {
    if (IsCheckedType(type) && !IsValidValue(type, text))
        RaiseInvalidValue(text, condition.GetCaptionText());
}

// Whether nothing of a date or time, read from the user's text, was lost on its way into the statement.
bool MeansTheSame(const TSQLFormats& formats, TFieldType type, std::string_view text, std::string_view sql) {
    const std::optional<TReadDateTime> given = ReadDateTime(text), written = ReadSQLDate(formats, type, sql);
    if (!given || !written || given->Precision == dpFiner)
        return false;
    const std::int64_t difference = ToMilliseconds(given->Value) - ToMilliseconds(written->Value);
    return type == ftTime ? difference % MillisecondsADay == 0 : difference == 0;
}

const TDSField* FieldOf(const TFilterCond& condition) {
    return condition.GetRowType() == frtSimpleCondition
               ? static_cast<const TSimpleCond&>(condition).GetField()
               : nullptr;
}

// How the column keeps the values that a condition compares it with.
TDateStorage StorageOf(const TFilterCond& condition, TFieldType type) {
    const TDSField* const field = type == ftDate || type == ftDateTime ? FieldOf(condition) : nullptr;
    return field ? field->Storage : dsAsType;
}

} // namespace

bool ComparesSingle(const TFilterCond& condition, TFieldType type) {
    constexpr int singleSize = 4;
    const TDSField* const field = type == ftFloat ? FieldOf(condition) : nullptr;
    return field && field->FieldType == ftFloat && field->FieldSize == singleSize;
}

bool TValueWriter::IsQuoted(TFieldType type) const {
    return structure_.GetQuotedTypes().Contains(type) || (strict_ && !IsCheckedType(type));
}

bool TValueWriter::HasLiteral(TFieldType type, TDateStorage storage) const {
    if (storage != dsAsType)
        return IsNumberStorage(storage);
    return type == ftBoolean ? !dialect_.True.empty()
                             : IsDateOrTime(type) && DateFormOf(dialect_, type).IsLiteral;
}

// Quotes of the template around a list or a sub-query would end where a strict query has quotes inside.
TValueEntry TValueWriter::EntryOf(const TFilterCond& condition, int value) const {
    const TValue entry = ValueOf(condition, value);
    if (strict_ && entry.Kind != vkScalar)
        return veStretch;
    if (entry.Kind == vkSubQuery)
        return veBare;
    return IsQuoted(entry.Type) && !HasLiteral(entry.Type, entry.Storage) ? veBare : veStretch;
}

TValueWriter::TValue TValueWriter::ValueOf(const TFilterCond& condition, int value) const {
    const TFieldType type = condition.GetValueType(value);
    return {condition,
            condition.GetValue(value),
            condition.GetValueKind(value),
            type,
            strict_ ? StorageOf(condition, type) : dsAsType,
            strict_ && ComparesSingle(condition, type)};
}

bool TValueWriter::NeedsOwnLiteral(const TValue& value) const {
    return NeedsHexText(dialect_, value.Text) && value.Kind != vkSubQuery && !IsDateOrTime(value.Type);
}

void TValueWriter::Append(std::string& out, const TValue& value, bool quotes) const {
    switch (value.Kind) {
    case vkSubQuery:
        if (strict_)
            CheckSubQuery(value.Text, value.Condition.GetCaptionText(), dialect_);
        out += value.Text.empty() ? EmptyValue(value.Type) : value.Text;
        break;
    case vkList:
        AppendList(out, value);
        break;
    case vkScalar:
        AppendItem(out, value, value.Text, quotes && IsQuoted(value.Type));
        break;
    }
}

// One value, without quotes or between its own. A quote in it is doubled.
void TValueWriter::AppendItem(std::string& out, const TValue& value, std::string_view text,
                              bool quotes) const {
    if (strict_ && IsCheckedType(value.Type)) {
        text = Trim(text);
        CheckValue(value.Condition, value.Type, text);
    }
    if (text.empty())
        text = EmptyValue(value.Type);
    else if (IsDateOrTime(value.Type))
        return AppendDate(out, value, text, quotes);
    const bool hasLiteral = HasLiteral(value.Type, dsAsType);
    if (value.Type == ftBoolean && hasLiteral && IsValidValue(value.Type, text))
        out += text == "1" || SameText(text, "true") ? dialect_.True : dialect_.False;
    else if (value.IsSingle && !dialect_.SingleNumber.empty())
        out += FillPattern(dialect_.SingleNumber, {text});
    else if (quotes || hasLiteral)
        AppendTextLiteral(out, dialect_, text);
    else
        AppendDoubled(out, text, '\'');
}

void TValueWriter::AppendDate(std::string& out, const TValue& value, std::string_view text,
                              bool quotes) const {
    quotes = quotes && !HasLiteral(value.Type, value.Storage);
    out += quotes ? "'" : "";
    const TSQLFormats& formats = structure_.GetSQLFormats();
    const std::size_t start = out.size();
    if (value.Storage != dsAsType) {
        AppendStoredDate(out, value, text);
    } else {
        AppendDateValue(out, formats, value.Type, text, dialect_);
        if (strict_ && !MeansTheSame(formats, value.Type, text, std::string_view(out).substr(start)))
            RaiseInvalidValue(text, value.Condition.GetCaptionText()); // the format would drop a part of it
    }
    out += quotes ? "'" : "";
}

void TValueWriter::AppendStoredDate(std::string& out, const TValue& value, std::string_view text) const {
    const TMomentColumn column(value.Type, value.Storage, structure_.GetSQLFormats(), dialect_,
                               IsQuoted(value.Type));
    const std::optional<TReadDateTime> read = ReadDateTime(text);
    if (!read || !column.CanKeep(*read))
        RaiseInvalidValue(text, value.Condition.GetCaptionText());
    column.AppendPoint(out, ToMilliseconds(read->Value));
}

// The items of a quoted type each in quotes; of another type the list as it stands, unless each item is to be
// checked.
void TValueWriter::AppendList(std::string& out, const TValue& value) const {
    const bool quoted = IsQuoted(value.Type);
    std::string_view text = value.Text;
    if (text.empty() && !strict_)
        text = EmptyValue(value.Type);
    if (!quoted && !strict_ && !IsDateOrTime(value.Type)) {
        AppendDoubled(out, text, '\'');
        return;
    }
    const bool isEmptyDate = text == EmptyValue(value.Type);
    bool first = true;
    ForEachItem(text, [&](std::string_view item) {
        if (!first)
            out += ',';
        first = false;
        const bool isEmpty = item.empty() && value.Type == ftBoolean && !strict_; // and not False
        if (isEmptyDate || isEmpty)
            out.append(quoted ? "'" : "").append(item).append(quoted ? "'" : "");
        else
            AppendItem(out, value, item, quoted);
    });
    if (first && strict_)
        RaiseInvalidValue(text, value.Condition.GetCaptionText());
}

} // namespace lumora
