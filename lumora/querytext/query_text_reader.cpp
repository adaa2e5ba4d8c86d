#include "lumora/model/structure.h"
#include "lumora/platform/convert.h"
#include "lumora/platform/formats.h"
#include "lumora/query/errors.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/query/query_result.h"
#include "lumora/query/query_state.h"
#include "lumora/querytext/line_breaks.h"
#include "lumora/querytext/list_items.h"
#include "lumora/querytext/query_text.h"
#include "lumora/support/needs.h"
#include "lumora/support/section_reader.h"
#include "lumora/support/string_helpers.h"
#include "lumora/titles/titles.h"

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

namespace lumora {

TSQLOptions IntToSQLOptions(int bits) {
    TSQLOptions options;
    if (bits & 2)
        options.Include(soSelectDistinct);
    if (bits & 8)
        options.Include(soQuoteAliases);
    if (bits & 16)
        options.Include(soBracketJoins);
    if (bits & 32)
        options.Include(soBracketConditions);
    return options;
}

namespace {

// Reads into a query that was cleared. Work is bounded by the lines that are there, whatever the counts in
// the text say.
class TQueryTextReader {
public:
    TQueryTextReader(TVQuery& query, const TStringList& lines, TTitles* titles)
        : query_(query), model_(*query.GetDbStruct()), lines_(lines), titles_(titles), sections_(lines) {}

    void Read();

private:
    // The rows that the text has for one bracket: their positions in it and their sections.
    using TChildSections = std::vector<std::pair<int, int>>;

    void ReadMain();
    void FindRowSections();
    void ReadRow(int section, TFilterBracket* parent);
    void ReadBracket(const TSectionLines& lines, std::string_view name, TFilterBracket* parent);
    void ReadSimple(const TSectionLines& lines, TFilterBracket& parent);
    void ReadCustom(const TSectionLines& lines, TFilterBracket& parent);
    void ReadValues(const TSectionLines& lines, TFilterCond& condition);
    void ReadSubQuery(const TSectionLines& lines, TFilterCond& condition);
    TDSField* FindField(const TSectionLines& lines) const;

    TVQuery& query_;
    const TVCustomDBStructure& model_;
    const TStringList& lines_;
    TTitles* titles_; // none: the text keeps its own
    TSectionIndex sections_;
    int position_ = 0; // behind the last section that was read
    std::unordered_map<std::string_view, TChildSections, TNoCaseHash, TNoCaseEqual> children_;
};

void TQueryTextReader::Read() {
    if (titles_) // by the version of the text read before: the own version comes behind the titles
        titles_->ReadFromQueryText(lines_, sections_, query_.GetVersion());
    ReadMain();
    TStringList text;
    sections_.Read("Description", position_).CopyTo(text);
    query_.SetDescription(text);
    if (const TSectionLines userData = sections_.Read("UserData", position_); !userData.Empty()) {
        userData.CopyTo(text);
        query_.SetUserData(text);
    }
    query_.GetQResult().GetResultFields().LoadFromSections(sections_);
    FindRowSections();
    if (const int root = sections_.Find("Row", position_); root >= 0)
        ReadRow(root, nullptr);
}

void TQueryTextReader::ReadMain() {
    const TSectionLines main = sections_.Read("Main", position_);
    CheckNeeds(main.Value("Needs"), {NeedMainTable, NeedTables, NeedHidden, NeedGrouping, NeedBreaks});
    query_.SetQueryName(std::string(main.Value("QueryName")));
    query_.SetVersion(XStrToFloat(main.Value("Version"), 1.1));
    if (const std::string_view options = Trim(main.Value("Options")); !options.empty())
        query_.SetSQLOptions(IntToSQLOptions(XStrToInt(options)));
    query_.SetOwnMainTable(std::string(main.Value("MainTable")));
    query_.SetShownTables(ShownTablesFromText(main.Value("Tables")));
}

// The sections "Row...", by the section of the bracket that holds the row.
void TQueryTextReader::FindRowSections() {
    for (int section = position_; section < sections_.Count(); ++section) {
        std::string_view name = sections_.Name(section);
        if (name.size() < 5 || name.back() != '.' || !SameText(name.substr(0, 3), "Row"))
            continue;
        name.remove_suffix(1);
        std::size_t digits = name.size();
        while (digits > 3 && IsDigit(name[digits - 1]))
            --digits;
        const std::string_view number = name.substr(digits);
        if (number.empty() || number.size() > 9 || number[0] == '0')
            continue;
        children_[name.substr(0, digits)].emplace_back(XStrToInt(number), section);
    }
    for (auto& [name, sections] : children_)
        if (!std::is_sorted(sections.begin(), sections.end()))
            std::sort(sections.begin(), sections.end());
}

void TQueryTextReader::ReadRow(int section, TFilterBracket* parent) {
    position_ = section + 1;
    const TSectionLines lines = sections_.Lines(section);
    if (lines.Empty())
        return;
    const int type = StrToInt(lines.Value("RowType"));
    if (type == 1)
        ReadBracket(lines, sections_.Name(section), parent);
    else if (type == 0 && parent)
        ReadSimple(lines, *parent);
    else if (type == 2 && parent)
        ReadCustom(lines, *parent);
}

void ReadEnabled(const TSectionLines& lines, TFilterRow& row) {
    if (const std::string_view enabled = lines.Value("Enabled"); !enabled.empty())
        row.SetEnabled(StrToInt(enabled) != 0);
}

void TQueryTextReader::ReadBracket(const TSectionLines& lines, std::string_view name,
                                   TFilterBracket* parent) {
    TFilterBracket* const bracket = parent ? parent->AddNewBracket() : query_.GetRootBracket();
    if (!parent)
        bracket->SetEnabled(true); // unless the text says otherwise
    ReadEnabled(lines, *bracket);
    const int count = StrToInt(lines.Value("RowCount"));
    if (const auto found = children_.find(name); found != children_.end()) {
        int last = 0;
        for (const auto& [number, section] : found->second) {
            if (number > count)
                break;
            if (number == last || section < position_)
                continue;
            last = number;
            ReadRow(section, bracket);
        }
    }
    const int link = StrToInt(lines.Value("LinkType"));
    bracket->SetLinkType(link >= 0 && link <= fltNotAll ? static_cast<TFilterLinkType>(link) : fltAll);
}

TDSField* TQueryTextReader::FindField(const TSectionLines& lines) const {
    TDSField* field = nullptr;
    if (query_.GetVersion() < 1.4)
        field = model_.FieldByName(fnFullName, lines.Value("FldName"));
    else if (query_.GetVersion() < 2.0)
        field = model_.FieldByName(fnSQLExpr, lines.Value("FldName"));
    else
        field = model_.FieldByID(StrToInt(lines.Value("FieldID")));
    return field ? field : model_.GetUnrecognizedField();
}

void TQueryTextReader::ReadSimple(const TSectionLines& lines, TFilterBracket& parent) {
    TDSField* const field = FindField(lines);
    TSimpleCond* const condition = parent.AddCond();
    condition->SetField(field);
    TDSOperator* const op = model_.OperatorByName(lines.Value("Operator"));
    condition->SetOperator(op ? op : model_.GetUnrecognizedOperator());
    ReadEnabled(lines, *condition);
    ReadValues(lines, *condition);
}

void TQueryTextReader::ReadCustom(const TSectionLines& lines, TFilterBracket& parent) {
    TDSCondition* const target = model_.ConditionByID(StrToInt(lines.Value("CondID")));
    if (!target)
        throw EVQueryPanelError(qpeUnknownCondition, {lines.Value("CondID")});
    TCustomCond* const condition = parent.AddCustomCond(target);
    ReadEnabled(lines, *condition);
    ReadValues(lines, *condition);
}

void TQueryTextReader::ReadValues(const TSectionLines& lines, TFilterCond& condition) {
    if (query_.GetVersion() < 1.2) {
        condition.SetValue(1, std::string(lines.Value("Value1")));
        condition.SetValue(2, std::string(lines.Value("Value2")));
        return;
    }
    condition.SetValueIsParam(1, XStrToBool(lines.Value("Param1")));
    condition.SetValueIsParam(2, XStrToBool(lines.Value("Param2")));
    if (XStrToBool(lines.Value("Breaks")))
        LoadValues(UnescapeBreaks(lines.Value("Value1")), UnescapeBreaks(lines.Value("Value2")), condition);
    else
        LoadValues(lines.Value("Value1"), lines.Value("Value2"), condition);
    for (const int value : {1, 2})
        if (TSQLParam* const param = condition.GetParam(value))
            param->ValueFormat = lines.Value(value == 1 ? "VFormat1" : "VFormat2");
    ReadSubQuery(lines, condition);
    if (query_.GetVersion() < 2.1)
        return;
    for (const int value : {1, 2})
        if (const std::string_view caption = lines.Value(value == 1 ? "Caption1" : "Caption2");
            !caption.empty())
            condition.SetCaption(value, std::string(caption));
}

// The SQL of a sub-query is kept in one line, two blanks for each line break; the hint shows its lines.
void TQueryTextReader::ReadSubQuery(const TSectionLines& lines, TFilterCond& condition) {
    if (const std::string_view text = lines.Value("SubQuery"); !text.empty()) {
        TStringList subQuery;
        subQuery.SetCommaText(text);
        condition.SetSubQuery(subQuery);
        const std::string value = condition.GetValue(1);
        condition.SetHint(ReplaceText(value, "  ", "\n"));
        condition.SetValue(1, ReplaceText(value, "  ", " "));
    }
    condition.SetSubQueryOptions(IntToSQLOptions(XStrToInt(lines.Value("SubQueryOptions"))));
}

// A number as the user sees it with all that it says: milliseconds, and the midnight of "36955.0".
std::string NumberToExactDate(TFieldType type, double number, bool saysTime) {
    if (type == ftTime)
        return ExactTimeToStr(number);
    const bool hasFraction = DecodeTime(number).Millisecond != 0;
    const bool isDay = !saysTime && !HasTime(number);
    return ExactDateTimeToStr(number, isDay ? dpDay : hasFraction ? dpMillisecond : dpSecond);
}

// A date-time number as the user sees it; what is no number stays as it is.
std::string NumberToDate(TFieldType type, std::string_view text, bool strict) {
    const std::optional<double> number = TryStrToFloat(Trim(text));
    if (!number)
        return std::string(text);
    if (strict)
        return NumberToExactDate(type, *number, Trim(text).ends_with(".0"));
    const TFormatSettings& settings = FormatSettings();
    if (type == ftTime)
        return TimeToStr(*number);
    std::string mask = ReplaceTextNoCase(settings.ShortDateFormat, "mmmm", "mm");
    mask = ReplaceTextNoCase(mask, "mmm", "mm");
    if (type == ftDateTime && HasTime(*number))
        mask.append(" ").append(settings.LongTimeFormat);
    return FormatDateTime(mask, *number);
}

std::string LoadedValue(const TFilterCond& condition, int value, std::string_view text) {
    const TFieldType type = condition.GetValueType(value);
    const TValueKind kind = condition.GetValueKind(value);
    if (!IsDateOrTime(type) || kind == vkSubQuery || text.empty() || condition.GetValueIsParam(value))
        return std::string(text);
    const bool strict = condition.GetQuery().GetStrict();
    if (kind == vkScalar)
        return NumberToDate(type, text, strict);
    return ConvertItems(text,
                        [type, strict](const std::string& item) { return NumberToDate(type, item, strict); });
}

} // namespace

void LoadValues(std::string_view value1, std::string_view value2, TFilterCond& condition) {
    for (const int value : {1, 2}) {
        const std::string text = LoadedValue(condition, value, value == 1 ? value1 : value2);
        if (TSQLParam* const param = condition.GetParam(value))
            param->Name = text;
        else
            condition.SetValue(value, text);
    }
}

void ReadQueryText(TVQuery& query, const TStringList& lines, TTitles* titles) {
    query.CheckIfDBStructAssigned();
    {
        const TQueryStateGuard guard(query, stLoading);
        query.ClearAll();
        if (!lines.Empty())
            TQueryTextReader(query, lines, titles).Read();
    }
    query.SetModified(false);
    query.QueryChanged();
    query.ParametersListChanged();
}

} // namespace lumora
