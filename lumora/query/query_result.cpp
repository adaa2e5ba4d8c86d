#include "lumora/query/query_result.h"

#include "lumora/query/errors.h"
#include "lumora/query/filter_rows.h"

#include <algorithm>

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
}

// --- The statement.

const TStringList& TQueryResult::GetSQL() {
    sql_.Clear();
    sql_.Add(GetSelectClause());
    sql_.AddStrings(GetFromClause());
    if (usesSQL1Joins_ || !conditions_.Empty()) {
        sql_.Add("WHERE");
        if (usesSQL1Joins_ && AddSQL1Joins(sql_) && !conditions_.Empty())
            sql_.AppendToLast(" AND");
        sql_.AddStrings(conditions_);
    }
    if (!GroupBy.empty())
        sql_.Add("GROUP BY " + GroupBy);
    if (!OrderBy.empty())
        sql_.Add("ORDER BY " + OrderBy);
    return sql_;
}

std::string TQueryResult::GetSelectClause() {
    if (sqlOptions_.Contains(soASCIIRFields))
        ReplaceForeignAliases();
    std::string line = sqlOptions_.Contains(soSelectDistinct) ? "SELECT DISTINCT " : "SELECT ";
    if (resultFields_.JustSorting || resultFields_.Count() == 0)
        return line += '*';
    for (int i = 0; i < resultFields_.Count(); ++i)
        line.append(i == 0 ? "" : ", ").append(resultFields_.GetRField(i)->GetSelectExpr());
    return line;
}

void TQueryResult::ReplaceForeignAliases() {
    for (int i = 0; i < resultFields_.Count(); ++i) {
        TResultField& field = *resultFields_.GetRField(i);
        const std::string& alias = field.GetAlias();
        if (std::any_of(alias.begin(), alias.end(),
                        [](char c) { return static_cast<unsigned char>(c) >= 128; }))
            field.SetAlias("C" + std::to_string(i + 1));
    }
}

namespace {

std::string_view JoinKind(const TResultTable& table) {
    const bool isSecond = table.Link->Table2 == table.Table;
    switch (table.Link->LinkType) {
    case ltOuterLeft:
        return isSecond ? "LEFT OUTER" : "RIGHT OUTER";
    case ltOuterRight:
        return isSecond ? "RIGHT OUTER" : "LEFT OUTER";
    case ltOuterFull:
        return "FULL";
    case ltInner:
        break;
    }
    return "INNER";
}

} // namespace

const TStringList& TQueryResult::GetFromClause() {
    if (resultTables_.Empty())
        throw EVQueryPanelError(qpeQueryWasNotBuilt);
    const bool joins = sqlSyntax_ == ssSQL2;
    const int joinCount = resultTables_.Count() - 1;
    const bool bracketed = joins && joinCount > 1 && panel_.GetSQLOptions().Contains(soBracketJoins);
    usesSQL1Joins_ = !joins && joinCount > 0;
    from_.Clear();
    std::string line = "FROM ";
    line.append(static_cast<std::size_t>(bracketed ? joinCount - 1 : 0), '(');
    for (int i = 0; i < resultTables_.Count(); ++i) {
        const TResultTable& item = resultTables_.GetItem(i);
        if (i > 0) {
            line = "     ";
            if (joins)
                line.append(JoinKind(item)).append(" JOIN ");
        }
        item.Table->AppendSQLExpr(line, Quoting());
        if (i > 0 && joins) {
            line += " ON ";
            item.Link->AppendSQLExpr(line, ssSQL2, Quoting());
        }
        if (bracketed && i > 0 && i < joinCount)
            line += ')';
        if (!joins && i < joinCount)
            line += ", ";
        from_.Add(line);
    }
    return from_;
}

bool TQueryResult::AddSQL1Joins(TStringList& lines) const {
    const TSQLSyntax form = sqlSyntax_ == ssOracle ? ssOracle : ssSQL1;
    for (int i = 1; i < resultTables_.Count(); ++i) {
        if (i > 1)
            lines.AppendToLast(" AND");
        lines.Add("   " + AdjustCondition(resultTables_.GetItem(i).Link->GetSQLExpr(form, Quoting())));
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

TSQLParam* TQueryResult::AddParameter(TFilterCond& condition, int valueIndex) {
    TSQLParam* const other = FindParameterByCondition(&condition, valueIndex == 1 ? 2 : 1);
    TSQLParam* const param = params_.Add(std::make_unique<TSQLParam>(condition, valueIndex));
    param->Name = "Param" + std::to_string(params_.Count() + ParamNumberBase);
    const std::string caption = condition.GetValueName(valueIndex) + " param";
    param->Caption = caption;
    if (other) {
        param->Caption = caption + (valueIndex == 1 ? " 1" : " 2");
        other->Caption = caption + (valueIndex == 1 ? " 2" : " 1");
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
