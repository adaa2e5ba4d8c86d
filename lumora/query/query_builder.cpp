#include "lumora/query/query_builder.h"

#include "lumora/model/structure.h"
#include "lumora/query/errors.h"
#include "lumora/query/moment_comparison.h"
#include "lumora/query/pattern_place.h"
#include "lumora/query/strict_checks.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

namespace lumora {

TQueryBuilder::TQueryBuilder(TVQuery& panel, const TVCustomDBStructure& structure)
    : panel_(panel),
      result_(panel.GetQResult()),
      structure_(structure),
      strict_(panel.GetStrict()),
      dialect_(EffectiveDialect(panel.GetDialect(), panel.GetSQLSyntax(), strict_)),
      quoting_(QuotingOf(dialect_, strict_)),
      exact_(strict_ || dialect_.Exact),
      values_(structure, dialect_, strict_),
      bracketConditions_(panel.GetSQLOptions().Contains(soBracketConditions)) {}

void TQueryBuilder::Build(TDSTable* mainTable, const TFilterBracket* root) {
    statement_ = result_.BeginBuild();
    hostWantsText_ = panel_.WantsConditionText();
    added_.reserve(std::size(recent_));
    try {
        Collect(mainTable, root);
    } catch (...) {
        result_.FinishBuild(false);
        throw;
    }
    result_.EndBuild(std::move(statement_));
    result_.FinishBuild(true);
}

void TQueryBuilder::Collect(TDSTable* mainTable, const TFilterBracket* root) {
    if (mainTable)
        AddTable(mainTable);
    AddShownTables();
    AddResultFields();
    if (root && root->GetEnabled())
        statement_.Select.Where = MakeBracket(*root);
    if (root && result_.GetResultTables().Empty())
        throw EVQueryPanelError(qpeNoEnoughInfo);
}

// --- Tables.

// Tables of one name are one table, unless the query is strict: then a second alias is joined like any other
// table.
bool TQueryBuilder::HasTable(TDSTable* table) const {
    const TRTableList& tables = result_.GetResultTables();
    return strict_ ? tables.IndexOf(table) >= 0 : tables.Find(table->GetName()) != nullptr;
}

// One whose table or link the model has no more is refused: without it the statement would give other rows.
void TQueryBuilder::AddShownTables() {
    for (const TShownTable& shown : panel_.GetShownTables()) {
        TDSTable* const table = structure_.TableByName(tnAlias, shown.Alias);
        TDSLink* const link = shown.Partner.empty() ? nullptr : FindLinkOf(shown, structure_);
        if (!table || (!link && !shown.Partner.empty()))
            throw EVQueryPanelError(qpeNoShownTable, {shown.Alias});
        if (!link) {
            AddTable(table);
        } else if (result_.GetResultTables().IndexOf(table) < 0) { // in a plain query too
            // Where joins stand in WHERE, only the link itself can say that it is an outer one.
            const bool canSay = panel_.GetSQLSyntax() == ssSQL2 || shown.Kind == jkInner ||
                                (panel_.GetSQLSyntax() == ssOracle && shown.Kind == JoinKindOf(*link, table));
            if (!canSay)
                throw EVQueryPanelError(qpeOtherJoin, {shown.Alias});
            CheckLink(*link);
            result_.GetResultTables().Append(table, link, shown.Kind);
        }
    }
}

void TQueryBuilder::AddTable(TDSTable* table) {
    const TDSTable*& recent =
        recent_[(reinterpret_cast<std::uintptr_t>(table) / alignof(std::max_align_t)) % std::size(recent_)];
    if (recent == table)
        return;
    recent = table;
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
    FindPath(*tables.GetItem(0).Table, *table, path);
    for (int i = 1; i < path.GetTableCount(); ++i) {
        TDSTable* const step = path.GetTable(i);
        if (HasTable(step))
            continue;
        TDSLink* const link = path.GetTable(i - 1)->LinkByTable(step);
        if (strict_)
            CheckLink(*link);
        tables.Add(step, link);
    }
}

// A strict query says which tables no link joins.
void TQueryBuilder::FindPath(const TDSTable& from, const TDSTable& to, TDSPath& path) const {
    try {
        structure_.FindPath(from, to, path);
    } catch (const EVDBStructError& error) {
        if (!strict_ || error.Code != dseNoPath)
            throw;
        throw EVQueryPanelError(qpeNoPath, {from.GetDisplayName(), to.GetDisplayName()});
    }
}

// Without fields it would say "ON" and nothing, or join each record with each.
void TQueryBuilder::CheckLink(const TDSLink& link) const {
    if (link.Fields1.Empty())
        throw EVQueryPanelError(qpeEmptyLink, {link.Table1->GetAlias(), link.Table2->GetAlias()});
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
    std::vector<const TResultField*> sorted;
    for (int i = 0; i < fields.Count(); ++i) {
        TResultField& field = *fields.GetRField(i);
        if (strict_)
            CheckResultField(field);
        aggregates = aggregates || field.GetAgregate() || field.GetGrouping() == cgKey;
        for (const TDSField* const entry : field.GetFields())
            AddTables(entry->GetTables());
        if (field.GetSorting() != stNoSort)
            sorted.push_back(&field);
    }
    AddSortItems(sorted);
    if (aggregates)
        AddGroupBy();
}

void TQueryBuilder::AddSortItems(std::vector<const TResultField*>& sorted) {
    std::stable_sort(sorted.begin(), sorted.end(), [](const TResultField* a, const TResultField* b) {
        return a->GetSortOrder() < b->GetSortOrder();
    });
    TNodeList<TSortItem>& items = statement_.Select.OrderBy;
    for (const TResultField* const field : sorted) {
        const bool constant = strict_ && IsNumberConstant(field->GetSQLExpr());
        if (constant && result_.GetResultFields().JustSorting)
            continue; // the same in every record, and a number there would be a position
        statement_.Text += items.Empty() ? "" : ", ";
        const std::size_t start = statement_.Text.size();
        AppendSortItem(statement_.Text, *field, constant);
        TSortItem* const item = statement_.Nodes.New<TSortItem>();
        item->Text = statement_.SpanFrom(start);
        items.Add(item);
    }
}

void TQueryBuilder::CheckResultField(const TResultField& field) const {
    for (const TDSField* const entry : field.GetFields())
        if (entry == structure_.GetUnrecognizedField())
            throw EVQueryPanelError(qpeUnrecognizedField, {field.GetCaption()});
    CheckExpression(field.GetSQLExpr(), field.GetCaption(), dialect_);
    CheckSorting(field);
    if (field.GetHidden() && field.GetSorting() != stNoSort &&
        panel_.GetSQLOptions().Contains(soSelectDistinct))
        throw EVQueryPanelError(qpeHiddenDistinct, {field.GetCaption()});
}

// Records that are shown whole can't be sorted by a total: it would group them. Those that are told apart can
// be sorted by their columns only: not every engine takes more, and none could mean it.
void TQueryBuilder::CheckSorting(const TResultField& field) const {
    if (!result_.GetResultFields().JustSorting)
        return;
    const bool distinct = panel_.GetSQLOptions().Contains(soSelectDistinct);
    if (field.GetAgregate() && !(distinct && field.GetSorting() != stNoSort))
        throw EVQueryPanelError(qpeCantSortByTotal, {field.GetCaption()});
    if (field.GetSorting() == stNoSort || !distinct)
        return;
    const TDSFieldList& fields = field.GetFields();
    if (fields.size() != 1 || fields.front()->GetKind() != vfkData || field.GetFormula() != "@1")
        throw EVQueryPanelError(qpeCantSortDistinct, {field.GetCaption()});
}

// By name, or by position: a `constant` would be taken for another one.
void TQueryBuilder::AppendSortItem(std::string& out, const TResultField& field, bool constant) const {
    const bool justSorting = result_.GetResultFields().JustSorting;
    const bool fieldless = field.GetFields().empty();
    const bool byName =
        justSorting || field.GetHidden() ||
        (panel_.GetSQLOptions().Contains(soSortByNames) && !(strict_ && fieldless) && !constant);
    if (!byName)
        out += std::to_string(field.GetNumber());
    else if (fieldless || strict_) // strict: what the column shows, not only the first field in it
        field.AppendSQLExpr(out);
    else
        field.GetFields().front()->AppendSQLExpr(out, quoting_);
    out += field.GetSorting() == stAscending ? " ASC" : " DESC";
}

void TQueryBuilder::AddGroupBy() {
    TRFieldList& fields = result_.GetResultFields();
    for (int i = 0; i < fields.Count(); ++i) {
        const TResultField& field = *fields.GetRField(i);
        if (field.GetAgregate() || field.GetGrouping() == cgAny)
            continue;
        if (field.GetGrouping() == cgKey) {
            AddGroupItem(field.GetSQLExpr());
            continue;
        }
        for (const TDSField* const entry : field.GetFields())
            AddGroupItem(entry->GetGroupByFields(quoting_));
    }
}

void TQueryBuilder::AddGroupItem(std::string_view text) {
    if (text.empty())
        return;
    TNodeList<TGroupItem>& items = statement_.Select.GroupBy;
    statement_.Text += items.Empty() ? "" : ", ";
    TGroupItem* const item = statement_.Nodes.New<TGroupItem>();
    item->Text = statement_.Append(text);
    items.Add(item);
}

// --- Conditions.

// None for a bracket without conditions: it leaves no trace.
TPredicate* TQueryBuilder::MakeBracket(const TFilterBracket& bracket) {
    const TFilterLinkType type = bracket.GetLinkType();
    TPredicate* const node =
        statement_.NewBracket(type == fltAny || type == fltNone, type == fltNone || type == fltNotAll);
    for (int i = 0; i < bracket.GetRowCount(); ++i) {
        TFilterRow& row = *bracket.GetRow(i);
        if (!row.GetEnabled())
            continue;
        TPredicate* const member = row.GetRowType() == frtBracket
                                       ? MakeBracket(static_cast<TFilterBracket&>(row))
                                       : MakeLeaf(static_cast<TFilterCond&>(row));
        if (member)
            node->Members.Add(member);
    }
    return node->Members.Empty() ? nullptr : node;
}

// None for a condition without an operator.
TPredicate* TQueryBuilder::MakeLeaf(TFilterCond& condition) {
    const TDSTableList& tables = condition.GetTables();
    AddTables(tables);
    const TSQLTemplate* const pattern = condition.GetTemplate();
    if (!pattern)
        return nullptr;
    if (strict_ && condition.GetRowType() == frtSimpleCondition)
        CheckRecognized(static_cast<TSimpleCond&>(condition));
    TPredicate* const leaf = statement_.Nodes.New<TPredicate>();
    leaf->Tables = &tables;
    // A strict query holds an "or" of the template together, whatever stands around it.
    leaf->Parenthesized = bracketConditions_ || (strict_ && pattern->HasOuterOr());
    if (!FillMomentComparison(*leaf, condition))
        FillTemplate(*leaf, condition);
    if (hostWantsText_)
        LetHostChange(*leaf, condition);
    return leaf;
}

// What the host makes of a condition's text is its own: nothing is known of the values in it.
void TQueryBuilder::LetHostChange(TPredicate& leaf, TFilterCond& condition) {
    std::string text(statement_.View(leaf.Text));
    const unsigned version = panel_.GetRowsVersion();
    panel_.ConditionText(condition, text);
    if (panel_.GetRowsVersion() != version)
        throw EVQueryPanelError(qpeChangedMeanwhile);
    leaf.Text = statement_.Append(text);
    leaf.Values = {};
}

void TQueryBuilder::CheckRecognized(const TSimpleCond& condition) const {
    if (condition.GetField() == structure_.GetUnrecognizedField())
        throw EVQueryPanelError(qpeUnrecognizedField, {"row " + condition.GetRowID()});
    if (condition.GetOperator() == structure_.GetUnrecognizedOperator())
        throw EVQueryPanelError(qpeUnrecognizedOperator, {"row " + condition.GetRowID()});
}

// False when the template will do. Values that are days, or moments that the column keeps more exactly, are
// stretches of time.
bool TQueryBuilder::FillMomentComparison(TPredicate& leaf, TFilterCond& condition) {
    if (!strict_ || condition.GetRowType() != frtSimpleCondition || !IsDateOrTime(condition.GetValueType(1)))
        return false;
    const auto& simple = static_cast<TSimpleCond&>(condition);
    const TMomentComparison comparison(simple, structure_, dialect_);
    if (!comparison.IsNeeded())
        return false;
    const std::size_t start = statement_.Text.size();
    std::vector<TMomentComparison::TWrittenValue> written;
    comparison.Append(statement_.Text, simple.GetField()->GetSQLExpr(quoting_), written);
    leaf.Text = statement_.SpanFrom(start);
    for (const TMomentComparison::TWrittenValue& part : written) {
        TLeafValue* const value = statement_.Nodes.New<TLeafValue>();
        value->Text = {part.Start, part.End - part.Start};
        value->Type = condition.GetValueType(part.Number);
        value->Number = part.Number;
        leaf.Values.Add(value);
    }
    return true;
}

void TQueryBuilder::FillTemplate(TPredicate& leaf, TFilterCond& condition) {
    TPlanRequest request;
    request.Strict = exact_;
    request.HasField =
        condition.GetRowType() == frtSimpleCondition && static_cast<TSimpleCond&>(condition).GetField();
    request.HasTable = !condition.GetTables().empty();
    request.HasMainTable = !result_.GetResultTables().Empty();
    request.ValueCount = condition.GetValueCount();
    for (int value = 1; value <= std::min(request.ValueCount, MaxTemplateValues); ++value) {
        const bool isParam = condition.GetValueIsParam(value);
        const TValueKind kind = condition.GetValueKind(value);
        const std::string& text = condition.GetTemplate()->GetText();
        if (strict_ && !isParam && kind != vkScalar && !StandsAlone(text, value))
            RaiseInvalidValue(text, condition.GetCaptionText());
        request.SetEntry(value, isParam ? veParameter : values_.EntryOf(condition, value));
    }
    TTemplatePlan spare;
    const TTemplatePlan& plan = condition.GetTemplate()->Plan(request, spare);
    if (!plan.Patterns.empty())
        RefreshPatterns(plan, condition);
    const std::size_t start = statement_.Text.size();
    AppendPieces(statement_.Text, plan.Pieces, condition, &leaf);
    leaf.Text = statement_.SpanFrom(start);
}

void TQueryBuilder::AppendPieces(std::string& out, const std::vector<TTemplatePiece>& pieces,
                                 TFilterCond& condition, TPredicate* leaf) {
    std::size_t taken = 0; // of the next literal, by the value before it
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const TTemplatePiece& piece = pieces[i];
        switch (piece.Kind) {
        case tpLiteral:
            out.append(piece.Text, std::exchange(taken, 0));
            break;
        case tpField:
            static_cast<TSimpleCond&>(condition).GetField()->AppendSQLExpr(out, quoting_);
            break;
        case tpTable:
            out += condition.GetTables().front()->GetName();
            break;
        case tpMainTable:
            out += result_.GetResultTables().GetItem(0).Table->GetName();
            break;
        case tpValue:
            taken = AppendValue(out, pieces, i, condition, leaf);
            break;
        case tpParamName: {
            const std::size_t start = out.size();
            AppendParamName(out, *condition.GetParam(piece.Value));
            if (leaf)
                AddLeafValue(*leaf, start, condition.GetValueType(piece.Value), piece);
            break;
        }
        case tpParamPattern:
            AppendTextLiteral(out, dialect_, condition.GetParam(piece.Value)->ValueFormat);
            break;
        }
    }
}

// Gives how much of the literal behind the value is written with it.
std::size_t TQueryBuilder::AppendValue(std::string& out, const std::vector<TTemplatePiece>& pieces,
                                       std::size_t i, const TFilterCond& condition, TPredicate* leaf) {
    const TTemplatePiece& piece = pieces[i];
    const TValueWriter::TValue value = values_.ValueOf(condition, piece.Value);
    const TTemplatePiece* const next = i + 1 < pieces.size() ? &pieces[i + 1] : nullptr;
    const std::string_view behind = next && next->Kind == tpLiteral ? next->Text : std::string_view();
    std::size_t start = out.size(), taken = 0;
    if (strict_ && piece.InLiteral && i > 0 && value.Kind == vkScalar && !IsCheckedType(value.Type))
        if (const auto place = FindPatternPlace(pieces[i - 1].Text, behind, dialect_);
            place && (place->HasClause || HasWildcards(value.Text))) {
            start -= place->Before.size() + 1;
            AppendPattern(out, *place, behind, value.Text);
            taken = place->Length;
        }
    if (taken == 0) {
        const bool needsLiteral = piece.InLiteral && values_.NeedsOwnLiteral(value);
        if (needsLiteral)
            TakeQuotes(out, next, value);
        start = needsLiteral ? out.size() : start;
        taken = needsLiteral ? 1 : 0;
        values_.Append(out, value, needsLiteral || (exact_ && !piece.InLiteral));
    }
    if (leaf)
        AddLeafValue(*leaf, start, value.Type, piece);
    return taken;
}

// A text is found in values as it stands, whatever it means in a pattern.
void TQueryBuilder::AppendPattern(std::string& out, const TPatternPlace& place, std::string_view behind,
                                  std::string_view text) const {
    std::string pattern(place.Before);
    AppendEscapedPattern(pattern, dialect_, text);
    pattern += place.After;
    out.resize(out.size() - place.Before.size() - 1);
    AppendTextLiteral(out, dialect_, pattern);
    out += behind.substr(place.After.size() + 1, place.Length - place.After.size() - 1);
    if (!place.HasClause)
        out += dialect_.PatternClause;
}

void TQueryBuilder::AddLeafValue(TPredicate& leaf, std::size_t start, TFieldType type,
                                 const TTemplatePiece& piece) {
    TLeafValue* const value = statement_.Nodes.New<TLeafValue>();
    value->Text = statement_.SpanFrom(start);
    value->Type = type;
    value->Number = piece.Value;
    value->IsParam = piece.Kind == tpParamName;
    leaf.Values.Add(value);
}

// Takes the quote before a value away, for the value brings its own literal; the one behind it is to be left
// out. Refused where other text stands in the same quotes.
void TQueryBuilder::TakeQuotes(std::string& out, const TTemplatePiece* next,
                               const TValueWriter::TValue& value) const {
    const std::size_t size = out.size();
    const char before = size > 1 ? out[size - 2] : ' ';
    const bool opens = size > 0 && out[size - 1] == '\'' && before != '\'' && !IsParamName({&before, 1});
    const bool closes = next && next->Kind == tpLiteral && next->Text[0] == '\'' &&
                        (next->Text.size() == 1 || next->Text[1] != '\'');
    if (!opens || !closes)
        RaiseInvalidValue(value.Text, value.Condition.GetCaptionText());
    out.pop_back();
}

// The pattern is what stood around the parameter's place, without its quotes.
void TQueryBuilder::RefreshPatterns(const TTemplatePlan& plan, TFilterCond& condition) {
    for (const TTemplatePlan::TPattern& pattern : plan.Patterns) {
        std::string text;
        AppendPieces(text, pattern.Pieces, condition, nullptr);
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
