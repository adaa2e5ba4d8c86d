#include "lumora/query/value_text.h"

#include "lumora/model/structure.h"
#include "lumora/platform/convert.h"
#include "lumora/platform/formats.h"
#include "lumora/query/date_values.h"
#include "lumora/query/filter_rows.h"
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

bool MeansTheSame(const TSQLFormats& formats, TFieldType type, std::string_view text, std::string_view sql) {
    const TDateTime value = StrToDateTime(text);
    return TryDateValueFromSQL(formats, type, sql) ==
           (type == ftTime ? TimeToStr(value) : DateTimeToStr(value));
}

} // namespace

bool TValueWriter::IsQuoted(TFieldType type) const {
    return structure_.GetQuotedTypes().Contains(type) || (strict_ && !IsCheckedType(type));
}

bool TValueWriter::HasLiteral(TFieldType type) const {
    return type == ftBoolean ? !dialect_.True.empty()
                             : IsDateOrTime(type) && DateFormOf(dialect_, type).IsLiteral;
}

// Quotes of the template around a list or a sub-query would end where a strict query has quotes inside.
TValueEntry TValueWriter::EntryOf(TValueKind kind, TFieldType type) const {
    if (strict_ && kind != vkScalar)
        return veStretch;
    if (kind == vkSubQuery)
        return veBare;
    return IsQuoted(type) && !HasLiteral(type) ? veBare : veStretch;
}

TValueWriter::TValue TValueWriter::ValueOf(const TFilterCond& condition, int value) {
    return {condition, condition.GetValue(value), condition.GetValueKind(value),
            condition.GetValueType(value)};
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
        AppendList(out, value.Condition, value.Type, value.Text);
        break;
    case vkScalar:
        AppendItem(out, value.Condition, value.Type, value.Text, quotes && IsQuoted(value.Type));
        break;
    }
}

// One value, without quotes or between its own. A quote in it is doubled.
void TValueWriter::AppendItem(std::string& out, const TFilterCond& condition, TFieldType type,
                              std::string_view text, bool quotes) const {
    if (strict_ && IsCheckedType(type)) {
        text = Trim(text);
        CheckValue(condition, type, text);
    }
    if (text.empty())
        text = EmptyValue(type);
    else if (IsDateOrTime(type))
        return AppendDate(out, condition, type, text, quotes);
    if (type == ftBoolean && HasLiteral(type) && IsValidValue(type, text))
        out += text == "1" || SameText(text, "true") ? dialect_.True : dialect_.False;
    else if (quotes || HasLiteral(type))
        AppendTextLiteral(out, dialect_, text);
    else
        AppendDoubled(out, text, '\'');
}

void TValueWriter::AppendDate(std::string& out, const TFilterCond& condition, TFieldType type,
                              std::string_view text, bool quotes) const {
    quotes = quotes && !HasLiteral(type);
    if (quotes)
        out += '\'';
    const std::size_t start = out.size();
    AppendDateValue(out, structure_.GetSQLFormats(), type, text, dialect_);
    if (strict_ && !MeansTheSame(structure_.GetSQLFormats(), type, text, std::string_view(out).substr(start)))
        RaiseInvalidValue(text, condition.GetCaptionText()); // the format would drop a part of it
    if (quotes)
        out += '\'';
}

// The items of a quoted type each in quotes; of another type the list as it stands, unless each item is to be
// checked.
void TValueWriter::AppendList(std::string& out, const TFilterCond& condition, TFieldType type,
                              std::string_view text) const {
    const bool quoted = IsQuoted(type);
    if (text.empty() && !strict_)
        text = EmptyValue(type);
    if (!quoted && !strict_ && !IsDateOrTime(type)) {
        AppendDoubled(out, text, '\'');
        return;
    }
    const bool isEmptyDate = text == EmptyValue(type);
    bool first = true;
    ForEachItem(text, [&](std::string_view item) {
        if (!first)
            out += ',';
        first = false;
        const bool isEmpty = item.empty() && type == ftBoolean && !strict_; // and not False
        if (isEmptyDate || isEmpty)
            out.append(quoted ? "'" : "").append(item).append(quoted ? "'" : "");
        else
            AppendItem(out, condition, type, item, quoted);
    });
    if (first && strict_)
        RaiseInvalidValue(text, condition.GetCaptionText());
}

} // namespace lumora
