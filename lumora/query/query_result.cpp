#include "lumora/query/query_result.h"

#include "lumora/platform/properties.h"
#include "lumora/query/column_total.h"
#include "lumora/query/errors.h"
#include "lumora/query/filter_rows.h"
#include "lumora/statement/dialects/dialect.h"
#include "lumora/statement/sql_printer.h"

#include <algorithm>
#include <utility>

namespace lumora {

TQueryResult::TQueryResult(TVQuery& panel) : panel_(panel), resultFields_(nullptr, &panel) {}

std::span<const TPropertyInfo> TQueryResult::PublishedProperties() const {
    static const std::vector<TPropertyInfo> properties = {
        Property("SQLOptions", &TQueryResult::GetSQLOptions, &TQueryResult::SetSQLOptions, DefaultSQLOptions),
        Property("SQLSyntax", &TQueryResult::GetSQLSyntax, &TQueryResult::SetSQLSyntax, ssSQL2),
    };
    return properties;
}

void TQueryResult::GetResFieldCaptions(TStringList& captions) const {
    captions.Clear();
    for (int i = 0; i < resultFields_.Count(); ++i)
        if (!resultFields_.GetRField(i)->GetHidden())
            captions.Add(resultFields_.GetRField(i)->GetCaption());
}

void TQueryResult::SetSQLOptions(TSQLOptions options) {
    if (options == sqlOptions_)
        return;
    sqlOptions_ = options;
    resultFields_.ASCIIAliases = options.Contains(soASCIIRFields);
}

void TQueryResult::DbStructChanged(const TVCustomDBStructure* structure) {
    ClearBuild();
    resultFields_.SetDBStruct(structure);
}

void TQueryResult::ClearBuild() {
    OrderBy.clear();
    GroupBy.clear();
    resultTables_.Clear();
    conditions_.Clear();
    statement_.Clear();
    built_ = {};
    wasBuilt_ = stale_ = false;
}

namespace {

// The text of all items with what stands between them; they were written one behind the other.
template <typename TItem>
TTextSpan WholeClause(const TNodeList<TItem>& items) {
    if (items.Empty())
        return {};
    const std::size_t start = items.First->Text.Start;
    return {start, items.Last->Text.Start + items.Last->Text.Length - start};
}

} // namespace

// Handed out whole, so that nothing that the host asks for in the middle can disturb it.
TStatement TQueryResult::BeginBuild() {
    ClearBuild();
    wasBuilt_ = building_ = true;
    builtVersion_ = resultFields_.GetVersion();
    builtJustSorting_ = resultFields_.JustSorting;
    return std::exchange(statement_, TStatement());
}

void TQueryResult::EndBuild(TStatement statement) {
    statement_ = std::move(statement);
    const TSelect& select = statement_.Select;
    built_ = {select, statement_.Mark(), WholeClause(select.GroupBy), WholeClause(select.OrderBy)};
    GroupBy = statement_.View(built_.GroupBy);
    OrderBy = statement_.View(built_.OrderBy);
}

// What a failed build has left is no statement: whoever asks for one has it built again.
void TQueryResult::FinishBuild(bool succeeded) {
    building_ = false;
    stale_ = stale_ || !succeeded;
}

// --- The statement.

TSQLPrinter TQueryResult::Printer() const {
    const TSQLOptions options = panel_.GetSQLOptions();
    TPrintOptions form;
    form.Syntax = sqlSyntax_;
    const TDialect& dialect = EffectiveDialect(panel_.GetDialect(), sqlSyntax_, panel_.GetStrict());
    form.Quoting = QuotingOf(dialect, panel_.GetStrict());
    form.Limit = dialect.Limit;
    form.BracketJoins = options.Contains(soBracketJoins);
    form.BracketConditions = options.Contains(soBracketConditions);
    return {statement_, form};
}

const TStringList& TQueryResult::GetSQL() {
    GetStatement();
    sql_.Clear();
    Printer().Print(sql_, conditions_);
    return sql_;
}

bool TQueryResult::IsCurrent() const {
    return wasBuilt_ && !stale_ && builtVersion_ == resultFields_.GetVersion() &&
           builtJustSorting_ == resultFields_.JustSorting;
}

void TQueryResult::BuildAgainWhenStale() {
    if (wasBuilt_ && !IsCurrent() && !building_)
        panel_.BuildAgain();
}

const TStatement& TQueryResult::GetStatement() {
    BuildAgainWhenStale();
    BeginClauses();
    AddColumns();
    AddTables();
    AddGroupsAndSorting();
    return statement_;
}

// Conditions stay as they were built; the other clauses are made anew from lists that the host may change.
void TQueryResult::BeginClauses() {
    statement_.Rewind(built_.End);
    statement_.Select = built_.Select;
}

// Where the engine takes wrong averages of distinct rows, the word is left out if it changes nothing.
bool TQueryResult::SaysDistinct() const {
    const TDialect& dialect =
        EffectiveDialect(panel_.GetDialect(), panel_.GetSQLSyntax(), panel_.GetStrict());
    return sqlOptions_.Contains(soSelectDistinct) &&
           !(panel_.GetStrict() && dialect.DistinctSpoilsTotals && ShowsEachGroupOnce());
}

bool TQueryResult::ShowsEachGroupOnce() const {
    bool groups = false;
    for (int i = 0; i < resultFields_.Count() && !resultFields_.JustSorting; ++i) {
        const TResultField& field = *resultFields_.GetRField(i);
        groups = groups || field.GetAgregate();
        if (!field.GetAgregate() && (field.GetHidden() || TotalOf(field) != ctValue))
            return false;
    }
    return groups;
}

void TQueryResult::AddColumns() {
    for (int i = 0; i < resultFields_.Count() && sqlOptions_.Contains(soASCIIRFields); ++i)
        resultFields_.GetRField(i)->ReplaceForeignAlias();
    TSelect& select = statement_.Select;
    select.Distinct = SaysDistinct();
    for (int i = 0; i < resultFields_.Count() && !resultFields_.JustSorting; ++i) {
        const TResultField& field = *resultFields_.GetRField(i);
        if (field.GetHidden())
            continue;
        TSelectColumn* const column = statement_.Nodes.New<TSelectColumn>();
        const std::size_t start = statement_.Text.size();
        field.AppendSelectExpr(statement_.Text);
        column->Text = statement_.SpanFrom(start);
        select.Columns.Add(column);
    }
}

void TQueryResult::AddTables() {
    if (resultTables_.Empty())
        throw EVQueryPanelError(qpeQueryWasNotBuilt);
    for (int i = 0; i < resultTables_.Count(); ++i) {
        const TResultTable& item = resultTables_.GetItem(i);
        TJoinedTable* const joined = statement_.Nodes.New<TJoinedTable>();
        joined->Table = item.Table;
        joined->Link = item.Link;
        joined->Kind = item.Kind;
        statement_.Select.Tables.Add(joined);
    }
    usesSQL1Joins_ = Printer().JoinsInWhere();
}

// A text that the host has put into OrderBy or GroupBy stands as one item.
void TQueryResult::AddGroupsAndSorting() {
    const auto replace = [this](auto& items, auto* node, TTextSpan built, const std::string& text) {
        if (text == statement_.View(built))
            return;
        items = {};
        node->Text = statement_.Append(text);
        if (!text.empty())
            items.Add(node);
    };
    replace(statement_.Select.GroupBy, statement_.Nodes.New<TGroupItem>(), built_.GroupBy, GroupBy);
    replace(statement_.Select.OrderBy, statement_.Nodes.New<TSortItem>(), built_.OrderBy, OrderBy);
}

TStringList& TQueryResult::Conditions() {
    if (built_.Select.Where) {
        BeginClauses();
        Printer().PrintWhere(conditions_);
        built_.Select.Where = nullptr;
    }
    return conditions_;
}

std::string TQueryResult::GetSelectClause() {
    BeginClauses();
    AddColumns();
    std::string line;
    Printer().AppendSelect(line);
    return line;
}

const TStringList& TQueryResult::GetFromClause() {
    BeginClauses();
    AddTables();
    from_.Clear();
    Printer().PrintFrom(from_);
    return from_;
}

bool TQueryResult::AddSQL1Joins(TStringList& lines) const {
    const TSQLPrinter printer = Printer();
    for (int i = 1; i < resultTables_.Count(); ++i) {
        if (i > 1)
            lines.AppendToLast(" AND");
        printer.AppendLink(lines.Tail(), *resultTables_.GetItem(i).Link, resultTables_.GetItem(i).Kind);
        lines.EndLine();
    }
    return resultTables_.Count() > 1;
}

std::string TQueryResult::GetJoinConditions() const {
    TStringList lines;
    AddSQL1Joins(lines);
    std::string text;
    for (int i = 0; i < lines.Count(); ++i)
        text.append(i == 0 ? "" : "\r\n").append(lines[i]);
    return text;
}

std::string TQueryResult::AdjustCondition(std::string_view text) const {
    if (!panel_.GetSQLOptions().Contains(soBracketConditions))
        return std::string(text);
    return "(" + std::string(text) + ")";
}

// --- Parameters.

namespace {

std::string DefaultCaption(const TSQLParam& param) {
    return param.GetCondition().GetValueName(param.GetValueIndex()) + " param";
}

} // namespace

TSQLParam* TQueryResult::AddParameter(TFilterCond& condition, int valueIndex) {
    TSQLParam* const other = FindParameterByCondition(&condition, valueIndex == 1 ? 2 : 1);
    TSQLParam* const param = params_.Add(std::make_unique<TSQLParam>(condition, valueIndex));
    param->Name = "Param" + std::to_string(params_.Count() + ParamNumberBase);
    param->Caption = DefaultCaption(*param);
    if (other) {
        // Two of one condition are told apart, each under its own value's name.
        other->Caption = DefaultCaption(*other) + (valueIndex == 1 ? " 2" : " 1");
        param->Caption += valueIndex == 1 ? " 1" : " 2";
    }
    panel_.ParametersListChanged();
    return param;
}

TSQLParam* TQueryResult::FindParameter(std::string_view name) const {
    const int index = params_.IndexByName(name);
    return index < 0 ? nullptr : GetParam(index);
}

TSQLParam* TQueryResult::FindParameterByCondition(const TFilterCond* condition, int valueIndex) const {
    const int index = params_.IndexByCondition(condition, valueIndex);
    return index < 0 ? nullptr : GetParam(index);
}

void TQueryResult::DeleteParameter(const TSQLParam* param) {
    if (const int index = params_.IndexOf(param); index >= 0)
        params_.Delete(index);
    panel_.ParametersListChanged();
}

void TQueryResult::DeleteParameters(const TFilterCond* condition) {
    params_.DeleteByCondition(condition);
    panel_.ParametersListChanged();
}

void TQueryResult::ClearParams() {
    params_.Clear();
    panel_.ParametersListChanged();
}

} // namespace lumora
