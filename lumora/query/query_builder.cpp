#include "lumora/query/query_builder.h"

#include "lumora/query/errors.h"
#include "lumora/query/strict_checks.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <functional>

namespace lumora {

TQueryBuilder::TQueryBuilder(TVQuery& panel, const TVCustomDBStructure& structure)
    : panel_(panel),
      result_(panel.GetQResult()),
      values_(structure, panel.GetSQLSyntax(), panel.GetStrict()),
      structure_(structure),
      strict_(panel.GetStrict()),
      bracketConditions_(panel.GetSQLOptions().Contains(soBracketConditions)) {}

void TQueryBuilder::Build(TDSTable* mainTable, const TFilterBracket* root) {
    result_.ClearBuild();
    open_.reserve(16); // brackets are mostly nested less deep
    if (mainTable)
        AddTable(mainTable);
    AddResultFields();
    if (!root)
        return;
    if (root->GetEnabled())
        WriteBracket(*root);
    if (result_.GetResultTables().Empty())
        throw EVQueryPanelError(qpeNoEnoughInfo);
}

// --- Tables.

// Tables of one name are one table, unless the query is strict: then a second alias is joined like any other
// table.
bool TQueryBuilder::HasTable(TDSTable* table) const {
    const TRTableList& tables = result_.GetResultTables();
    return strict_ ? tables.IndexOf(table) >= 0 : tables.Find(table->GetName()) != nullptr;
}

void TQueryBuilder::AddTable(TDSTable* table) {
    if (table == lastAdded_)
        return;
    lastAdded_ = table;
    const auto place = std::lower_bound(added_.begin(), added_.end(), table, std::less<>());
    if (place != added_.end() && *place == table)
        return;
    added_.insert(place, table);
    if (HasTable(table))
        return;
    TRTableList& tables = result_.GetResultTables();
    if (tables.Empty()) {
        tables.Add(table, nullptr);
        return;
    }
    TDSPath path(nullptr);
    structure_.FindPath(*tables.GetItem(0).Table, *table, path);
    for (int i = 1; i < path.GetTableCount(); ++i) {
        TDSTable* const step = path.GetTable(i);
        if (!HasTable(step))
            tables.Add(step, path.GetTable(i - 1)->LinkByTable(step));
    }
}

void TQueryBuilder::AddTables(const TDSTableList& tables) {
    for (TDSTable* const table : tables)
        AddTable(table);
}

// --- Result fields.

void TQueryBuilder::AddResultFields() {
    TRFieldList& fields = result_.GetResultFields();
    fields.GenerateNumbers();
    bool aggregates = false;
    std::vector<std::pair<int, std::string>> sorted;
    for (int i = 0; i < fields.Count(); ++i) {
        TResultField& field = *fields.GetRField(i);
        if (strict_)
            CheckResultField(field);
        aggregates = aggregates || field.GetAgregate();
        for (const TDSField* const entry : field.GetFields())
            AddTables(entry->GetTables());
        if (field.GetSorting() != stNoSort)
            sorted.emplace_back(field.GetSortOrder(), SortItem(field));
    }
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& item : sorted)
        result_.OrderBy.append(result_.OrderBy.empty() ? "" : ", ").append(item.second);
    if (aggregates)
        AddGroupBy();
}

void TQueryBuilder::CheckResultField(const TResultField& field) const {
    for (const TDSField* const entry : field.GetFields())
        if (entry == structure_.GetUnrecognizedField())
            throw EVQueryPanelError(qpeUnrecognizedField, {field.GetCaption()});
    CheckExpression(field.GetSQLExpr(), field.GetCaption());
    CheckSorting(field);
}

// Records that are shown whole and told apart can be sorted by their columns only: not every engine takes
// more, and none could mean it.
void TQueryBuilder::CheckSorting(const TResultField& field) const {
    if (field.GetSorting() == stNoSort || !result_.GetResultFields().JustSorting ||
        !panel_.GetSQLOptions().Contains(soSelectDistinct))
        return;
    const TDSFieldList& fields = field.GetFields();
    if (fields.size() != 1 || fields.front()->GetKind() != vfkData || field.GetFormula() != "@1")
        throw EVQueryPanelError(qpeCantSortDistinct, {field.GetCaption()});
}

std::string TQueryBuilder::SortItem(TResultField& field) const {
    const bool justSorting = result_.GetResultFields().JustSorting;
    const bool constant = field.GetFields().empty(); // its text might be taken for a position
    const bool byName =
        justSorting || (panel_.GetSQLOptions().Contains(soSortByNames) && !(strict_ && constant));
    std::string item;
    if (!byName)
        item = std::to_string(field.GetNumber());
    else if (constant || strict_) // strict: what the column shows, not only the first field in it
        item = field.GetSQLExpr();
    else
        item = field.GetFields().front()->GetSQLExpr();
    return item + (field.GetSorting() == stAscending ? " ASC" : " DESC");
}

void TQueryBuilder::AddGroupBy() {
    TRFieldList& fields = result_.GetResultFields();
    for (int i = 0; i < fields.Count(); ++i) {
        const TResultField& field = *fields.GetRField(i);
        if (field.GetAgregate())
            continue;
        for (const TDSField* const entry : field.GetFields())
            if (const std::string item = entry->GetGroupByFields(strict_ ? nqStrict : nqPlain); !item.empty())
                result_.GroupBy.append(result_.GroupBy.empty() ? "" : ", ").append(item);
    }
}

// --- Conditions.

void TQueryBuilder::WriteBracket(const TFilterBracket& bracket) {
    open_.push_back({bracket.GetLinkType()});
    for (int i = 0; i < bracket.GetRowCount(); ++i) {
        TFilterRow& row = *bracket.GetRow(i);
        if (!row.GetEnabled())
            continue;
        if (row.GetRowType() == frtBracket)
            WriteBracket(static_cast<TFilterBracket&>(row));
        else
            WriteCondition(static_cast<TFilterCond&>(row));
    }
    if (open_.back().Opened)
        result_.Conditions().Add(")");
    open_.pop_back();
}

// Opens the brackets around the row that are not open yet, and joins the row to the one before it.
void TQueryBuilder::BeginRow() {
    std::size_t first = open_.size();
    while (first > 0 && !open_[first - 1].Opened)
        --first;
    for (std::size_t i = first; i < open_.size(); ++i) {
        if (i > 0)
            StartRowIn(open_[i - 1]);
        const bool negated = open_[i].LinkType == fltNone || open_[i].LinkType == fltNotAll;
        result_.Conditions().Add(negated ? " NOT (" : " (");
        open_[i].Opened = true;
    }
    StartRowIn(open_.back());
}

void TQueryBuilder::StartRowIn(TOpenBracket& bracket) {
    if (bracket.HasRows)
        result_.Conditions().AppendToLast(bracket.LinkType == fltAny || bracket.LinkType == fltNone ? " OR"
                                                                                                    : " AND");
    bracket.HasRows = true;
}

void TQueryBuilder::WriteCondition(TFilterCond& condition) {
    AddTables(condition.GetTables());
    if (!condition.GetTemplate())
        return;
    if (strict_ && condition.GetRowType() == frtSimpleCondition)
        CheckRecognized(static_cast<TSimpleCond&>(condition));
    // A strict query holds an "or" of the template together, whatever stands around it.
    const bool bracketed = bracketConditions_ || (strict_ && condition.GetTemplate()->HasOuterOr());
    TStringList& lines = result_.Conditions();
    if (panel_.WantsConditionText()) {
        text_.clear();
        FillTemplate(text_, condition);
        panel_.ConditionText(condition, text_);
        BeginRow();
        lines.Tail().append(bracketed ? "(" : "").append(text_).append(bracketed ? ")" : "");
    } else {
        BeginRow();
        std::string& line = lines.Tail();
        if (bracketed)
            line += '(';
        FillTemplate(line, condition);
        if (bracketed)
            line += ')';
    }
    lines.EndLine();
}

void TQueryBuilder::CheckRecognized(const TSimpleCond& condition) const {
    if (condition.GetField() == structure_.GetUnrecognizedField())
        throw EVQueryPanelError(qpeUnrecognizedField, {"row " + condition.GetRowID()});
    if (condition.GetOperator() == structure_.GetUnrecognizedOperator())
        throw EVQueryPanelError(qpeUnrecognizedOperator, {"row " + condition.GetRowID()});
}

void TQueryBuilder::FillTemplate(std::string& out, TFilterCond& condition) {
    TPlanRequest request;
    request.Strict = strict_;
    request.HasField =
        condition.GetRowType() == frtSimpleCondition && static_cast<TSimpleCond&>(condition).GetField();
    request.HasTable = !condition.GetTables().empty();
    request.HasMainTable = !result_.GetResultTables().Empty();
    request.ValueCount = condition.GetValueCount();
    for (int value = 1; value <= std::min(request.ValueCount, MaxTemplateValues); ++value)
        request.SetEntry(value, values_.EntryOf(condition, value));
    TTemplatePlan spare;
    const TTemplatePlan& plan = condition.GetTemplate()->Plan(request, spare);
    if (!plan.Patterns.empty())
        RefreshPatterns(plan, condition);
    AppendPieces(out, plan.Pieces, condition);
}

void TQueryBuilder::AppendPieces(std::string& out, const std::vector<TTemplatePiece>& pieces,
                                 TFilterCond& condition) {
    for (const TTemplatePiece& piece : pieces)
        switch (piece.Kind) {
        case tpLiteral:
            out += piece.Text;
            break;
        case tpField:
            static_cast<TSimpleCond&>(condition).GetField()->AppendSQLExpr(out, strict_ ? nqStrict : nqPlain);
            break;
        case tpTable:
            out += condition.GetTables().front()->GetName();
            break;
        case tpMainTable:
            out += result_.GetResultTables().GetItem(0).Table->GetName();
            break;
        case tpValue:
            values_.Append(out, condition, piece.Value, strict_ && !piece.InLiteral);
            break;
        case tpParamName:
            AppendParamName(out, *condition.GetParam(piece.Value));
            break;
        case tpParamPattern:
            out += '\'';
            AppendDoubled(out, condition.GetParam(piece.Value)->ValueFormat, '\'');
            out += '\'';
            break;
        }
}

// The pattern is what stood around the parameter's place, without its quotes.
void TQueryBuilder::RefreshPatterns(const TTemplatePlan& plan, TFilterCond& condition) {
    for (const TTemplatePlan::TPattern& pattern : plan.Patterns) {
        std::string text;
        AppendPieces(text, pattern.Pieces, condition);
        std::erase(text, '\'');
        condition.GetParam(pattern.Value)->ValueFormat = std::move(text);
    }
}

void TQueryBuilder::AppendParamName(std::string& out, const TSQLParam& param) const {
    if (strict_ && !IsParamName(param.Name))
        RaiseInvalidValue(param.Name, param.GetCondition().GetCaptionText());
    (out += ':') += param.Name;
}

} // namespace lumora
