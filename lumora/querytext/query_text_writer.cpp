#include "lumora/model/structure.h"
#include "lumora/platform/convert.h"
#include "lumora/platform/formats.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/query/query_result.h"
#include "lumora/query/query_state.h"
#include "lumora/querytext/line_breaks.h"
#include "lumora/querytext/list_items.h"
#include "lumora/querytext/query_text.h"
#include "lumora/support/string_helpers.h"
#include "lumora/titles/titles.h"

#include <charconv>

namespace lumora {

int SQLOptionsToInt(TSQLOptions options) {
    return (options.Contains(soSelectDistinct) ? 2 : 0) | (options.Contains(soQuoteAliases) ? 8 : 0) |
           (options.Contains(soBracketJoins) ? 16 : 0) | (options.Contains(soBracketConditions) ? 32 : 0);
}

namespace {

class TQueryTextWriter {
public:
    TQueryTextWriter(const TVQuery& query, const TTitles* titles, TStringList& lines)
        : query_(query), titles_(titles), lines_(lines) {}

    void Write();

private:
    struct TNeed {
        std::string_view Name;
        bool IsUsed;
    };

    void WriteMain();
    void WritePowers();
    std::string MainTableToKeep() const;
    void WriteVerbatim(std::string_view section, const TStringList& text);
    void WriteRow(const TFilterRow& row);
    void WriteBracket(const TFilterBracket& bracket);
    void WriteCondition(const TFilterCond& condition);
    void Put(std::string_view key, std::string_view value);
    void Put(std::string_view key, int value);

    const TVQuery& query_;
    const TTitles* titles_; // none: they are left out
    TStringList& lines_;
    std::string rowID_; // of the row being written
    std::string value1_;
    std::string value2_;
};

void TQueryTextWriter::Write() {
    lines_.Clear();
    if (titles_) {
        lines_.AddStrings(titles_->GetLines());
        lines_.Add("");
    }
    WriteMain();
    WriteVerbatim("[Description]", query_.GetDescription());
    WriteVerbatim("[UserData]", query_.GetUserData());
    query_.GetQResult().GetResultFields().SaveToStrings(lines_);
    if (query_.GetRootBracket())
        WriteRow(*query_.GetRootBracket());
}

void TQueryTextWriter::WriteMain() {
    lines_.Add("[Main]");
    Put("QueryName", query_.GetQueryName());
    lines_.Add("Version=3.5");
    if (query_.GetSaveSQLOptions())
        Put("Options", SQLOptionsToInt(query_.GetSQLOptions()));
    else
        Put("Options", "");
    WritePowers();
    lines_.Add("");
}

// What only newer readers know. Each is named among the needs, so that others refuse the text.
void TQueryTextWriter::WritePowers() {
    const std::string mainTable = MainTableToKeep();
    const TRFieldList& columns = query_.GetQResult().GetResultFields();
    const TNeed needs[] = {{NeedMainTable, !mainTable.empty()},
                           {NeedTables, !query_.GetShownTables().empty()},
                           {NeedHidden, columns.HasHidden()},
                           {NeedGrouping, columns.HasGrouping()},
                           {NeedBreaks, query_.GetRootBracket() && KeepsBreaks(*query_.GetRootBracket())}};
    std::string names;
    for (const TNeed& need : needs)
        if (need.IsUsed)
            names.append(names.empty() ? "" : ",").append(need.Name);
    if (names.empty())
        return;
    Put("Needs", names);
    if (!mainTable.empty())
        Put("MainTable", mainTable);
    if (!query_.GetShownTables().empty())
        Put("Tables", ShownTablesToText(query_.GetShownTables()));
}

// The query's own, and in a strict query whatever else it begins with, unless the model says the same.
std::string TQueryTextWriter::MainTableToKeep() const {
    const TDSTable* const table = query_.GetMainTable();
    if (!query_.GetOwnMainTable().empty() && !table)
        return query_.GetOwnMainTable();
    const bool isKept = table && table != query_.GetDbStruct()->GetDefaultMainTable() &&
                        (query_.GetStrict() || !query_.GetOwnMainTable().empty());
    return isKept ? table->GetAlias() : std::string();
}

void TQueryTextWriter::WriteVerbatim(std::string_view section, const TStringList& text) {
    lines_.Add(section);
    lines_.AddStrings(text);
    lines_.Add("");
}

void TQueryTextWriter::WriteRow(const TFilterRow& row) {
    lines_.Tail().append("[Row").append(rowID_).append("]");
    lines_.EndLine();
    if (row.GetRowType() == frtBracket)
        WriteBracket(static_cast<const TFilterBracket&>(row));
    else
        WriteCondition(static_cast<const TFilterCond&>(row));
}

void TQueryTextWriter::WriteBracket(const TFilterBracket& bracket) {
    Put("Enabled", bracket.GetEnabled() ? 1 : 0);
    lines_.Add("RowType=1");
    Put("LinkType", bracket.GetLinkType());
    Put("RowCount", bracket.GetRowCount());
    lines_.Add("");
    const std::size_t length = rowID_.size();
    for (int i = 0; i < bracket.GetRowCount(); ++i) {
        char digits[16];
        rowID_.append(digits, std::to_chars(digits, digits + sizeof digits, i + 1).ptr) += '.';
        WriteRow(*bracket.GetRow(i));
        rowID_.resize(length);
    }
}

void TQueryTextWriter::WriteCondition(const TFilterCond& condition) {
    const bool isSimple = condition.GetRowType() == frtSimpleCondition;
    lines_.Add(isSimple ? "RowType=0" : "RowType=2");
    Put("Enabled", condition.GetEnabled() ? 1 : 0);
    if (isSimple) {
        const TDSField* const field = static_cast<const TSimpleCond&>(condition).GetField();
        Put("FieldID", field ? field->GetID() : 0);
    } else {
        const TDSCondition* const target = static_cast<const TCustomCond&>(condition).GetCondition();
        Put("CondID", target ? target->GetID() : 0);
    }
    Put("Param1", condition.GetValueIsParam(1) ? 1 : 0);
    Put("Param2", condition.GetValueIsParam(2) ? 1 : 0);
    if (isSimple) {
        const TDSOperator* const op = static_cast<const TSimpleCond&>(condition).GetOperator();
        Put("Operator", op ? std::string_view(op->GetName()) : "");
    }
    SaveValues(condition, value1_, value2_);
    if (KeepsBreaks(condition)) {
        lines_.Add("Breaks=1");
        value1_ = EscapeBreaks(value1_);
        value2_ = EscapeBreaks(value2_);
    }
    Put("Value1", value1_);
    Put("Value2", value2_);
    for (const int value : {1, 2}) {
        if (const TSQLParam* const param = condition.GetParam(value))
            Put(value == 1 ? "VFormat1" : "VFormat2", param->ValueFormat);
        else
            Put(value == 1 ? "Caption1" : "Caption2", condition.GetCaption(value));
    }
    Put("SubQuery", condition.GetSubQuery().Empty() ? std::string() : condition.GetSubQuery().GetCommaText());
    Put("SubQueryOptions", SQLOptionsToInt(condition.GetSubQueryOptions()));
    lines_.Add("");
}

void TQueryTextWriter::Put(std::string_view key, std::string_view value) {
    lines_.Tail().append(key).append("=").append(value);
    lines_.EndLineWithoutBreaks();
}

void TQueryTextWriter::Put(std::string_view key, int value) {
    char digits[16];
    lines_.Tail().append(key).append("=").append(digits,
                                                 std::to_chars(digits, digits + sizeof digits, value).ptr);
    lines_.EndLine();
}

// In a strict query a day is another value than its midnight, whose number says that it has a time.
std::string DateToNumber(const std::string& text, bool strict) {
    const std::optional<TReadDateTime> read = ReadDateTime(text);
    const bool isMidnight =
        strict && read && read->Precision != dpDay && read->HasDate && !HasTime(read->Value);
    return FloatToStr(StrToDateTime(text)) + (isMidnight ? ".0" : "");
}

// A parameter stands under its name; a date or time as its number, each item of a list alike.
std::string SavedValue(const TFilterCond& condition, int value) {
    if (const TSQLParam* const param = condition.GetParam(value))
        return param->Name;
    const std::string& text = condition.GetValue(value);
    const TValueKind kind = condition.GetValueKind(value);
    if (!IsDateOrTime(condition.GetValueType(value)) || kind == vkSubQuery || text.empty())
        return text;
    const bool strict = condition.GetQuery().GetStrict();
    if (kind == vkScalar)
        return DateToNumber(text, strict);
    return ConvertItems(text, [strict](const std::string& item) { return DateToNumber(item, strict); });
}

} // namespace

void SaveValues(const TFilterCond& condition, std::string& value1, std::string& value2) {
    value1 = SavedValue(condition, 1);
    value2 = SavedValue(condition, 2);
    // The line breaks of a sub-query's SQL, which its hint shows, are kept as two blanks each.
    if (const std::string& hint = condition.GetHint();
        !condition.GetSubQuery().Empty() && ReplaceText(hint, "\n", " ") == value1)
        value1 = ReplaceText(hint, "\n", "  ");
}

void WriteQueryText(TVQuery& query, TStringList& lines, const TTitles* titles) {
    const TQueryStateGuard guard(query, stSaving);
    TQueryTextWriter(query, titles, lines).Write();
    query.SetModified(false);
}

} // namespace lumora
