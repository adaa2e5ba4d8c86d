#include "lumora/reading/sql_columns.h"

#include "lumora/model/structure.h"
#include "lumora/query/errors.h"
#include "lumora/query/field_by_sql.h"
#include "lumora/query/query_result.h"
#include "lumora/sqlparse/Vscanner.h"
#include "lumora/statement/dialects/dialect.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

constexpr std::string_view CountOfRecords = "count(*)";

std::string LowerOutsideLiterals(std::string_view text) {
    std::string lower(text);
    bool inLiteral = false;
    for (char& c : lower) {
        inLiteral = inLiteral != (c == '\'');
        if (!inLiteral)
            c = LowerAscii(c);
    }
    return lower;
}

// Two expressions that differ in blanks and letter case are one, unless something in quotes may differ too.
std::string KeyOf(std::string_view expression) {
    return expression.find_first_of("'\"`[") == std::string_view::npos ? FoldBlanks(expression)
                                                                       : std::string(expression);
}

// What a column can't hold: a statement of its own, and a text that a formula would take for a placeholder.
bool IsBeyondColumns(std::string_view text) {
    for (TVScanner scanner(text); !scanner.AtEnd(); scanner.Next()) {
        const TToken& token = scanner.Token();
        if (token.Kind == tkIdentifier && SQLWordOf(token.Text) == swSelect)
            return true;
        if (token.Kind == tkString && token.Text.find('@') != std::string_view::npos)
            return true;
    }
    return false;
}

} // namespace

TSQLColumns::TSQLColumns(TVQuery& query, const TVParserResult& statement, const TSQLNames& names)
    : query_(query),
      model_(*query.GetDbStruct()),
      statement_(statement),
      names_(names),
      fields_(query.GetQResult().GetResultFields()) {}

void TSQLColumns::Read() {
    ReadSelectList();
    ReadOrderBy();
    ReadGroupBy();
    fields_.JustSorting = IsEverything();
}

bool TSQLColumns::TakesAnyRecord() const {
    return std::any_of(grouped_.begin(), grouped_.end(),
                       [](const TResultField* field) { return field->GetGrouping() == cgAny; });
}

// "*", or "t.*" of the only table.
bool TSQLColumns::IsEverything() const {
    if (statement_.SelectAll)
        return true;
    const TSQLResultFieldList& list = statement_.ResultFields;
    const std::string folded = list.Count() == 1 ? FoldBlanks(list.GetItem(0).SQLExpr) : std::string();
    return names_.GetCount() == 1 && folded.ends_with(".*") && folded.find('(') == std::string::npos;
}

// --- Expressions.

TSQLColumns::TExpression TSQLColumns::ExpressionOf(std::string_view text, const TTextPlace& place) const {
    if (IsBeyondColumns(text))
        throw EVQueryPanelError(qpeCantBeKept, {text}, place);
    TExpression expression;
    if (names_.AreOfModel() && FieldBySQL(model_, text, true))
        expression.Text = text; // a virtual field may look like any expression
    else
        expression.Text = names_.WithFields(text, place, expression.Unknown);
    if (CountsRecords(expression.Text, place))
        expression.Text = CountOfRecords;
    return expression;
}

// count(*), count(1), and count(t.*) of the only table.
bool TSQLColumns::CountsRecords(std::string_view text, const TTextPlace& place) const {
    const std::string folded = FoldBlanks(text);
    if (folded == CountOfRecords || folded == "count(1)")
        return true;
    if (!folded.starts_with("count(") || !folded.ends_with(".*)") ||
        folded.find('(', 6) != std::string::npos || folded.starts_with("count(distinct"))
        return false;
    if (names_.GetCount() > 1) // not of the records where a join has found none
        throw EVQueryPanelError(qpeCantBeKept, {text}, place);
    return true;
}

TResultField& TSQLColumns::AddField(std::string_view text, const TTextPlace& place) {
    const TExpression expression = ExpressionOf(text, place);
    if (expression.Text == CountOfRecords)
        return *fields_.Add(std::string(CountOfRecords), {}, Message(msgNumberOfRecords));
    TResultField* field = fields_.AddBySQLExpr({}, expression.Text, stNoSort, 0);
    const bool hasFields = field->GetFields().front() != model_.GetUnrecognizedField();
    const std::string formula = LowerAscii(field->GetFormula());
    for (const std::string& name : expression.Unknown)
        if (!hasFields || FindWholeWord(formula, LowerAscii(name)) != std::string::npos)
            throw EVQueryPanelError(qpeUnrecognizedField, {name}, place);
    for (const TDSField* const entry : field->GetFields())
        if (hasFields && !names_.HasTablesOf(*entry))
            throw EVQueryPanelError(qpeUnrecognizedField, {entry->GetSQLExpr()}, place);
    if (!hasFields) {
        fields_.Delete(fields_.IndexOf(field));
        const std::string constant = LowerOutsideLiterals(expression.Text);
        field = fields_.Add(constant, {}, constant);
    }
    return *field;
}

// --- The select list.

void TSQLColumns::ReadSelectList() {
    const TSQLResultFieldList& list = statement_.ResultFields;
    for (int i = 0; i < list.Count() && !IsEverything(); ++i)
        AddShown(list.GetItem(i));
    shown_ = fields_.Count();
}

void TSQLColumns::AddShown(const TSQLResultField& parsed) {
    TResultField& field = AddField(parsed.SQLExpr, parsed.Place);
    if (!parsed.Alias.empty()) {
        field.SetCaption(std::string(parsed.Alias));
        field.KeepAlias(std::string(parsed.Alias));
        return;
    }
    if (!field.GetFields().empty())
        field.SetCaption(field.GenerateCaption());
    field.SetAlias("");
}

// The column at a position; none for what is no whole number.
TResultField* TSQLColumns::ByPosition(std::string_view text, const TTextPlace& place) const {
    const int number = XStrToInt(text, -1);
    if (std::to_string(number) != text)
        return nullptr;
    if (number < 1 || number > shown_)
        throw EVQueryPanelError(qpeCantBeKept, {text}, place);
    return fields_.GetRField(number - 1);
}

TResultField* TSQLColumns::ByAlias(std::string_view text) const {
    const TVScanner scanner(text);
    const TToken& token = scanner.Token();
    if (!token.IsName() || token.Text.size() != text.size())
        return nullptr;
    for (int i = 0; i < shown_; ++i)
        if (SameText(statement_.ResultFields.GetItem(i).Alias, token.Name()))
            return fields_.GetRField(i);
    return nullptr;
}

// The column of the list that says the same as the last one, which then goes; else the last one, hidden.
TResultField& TSQLColumns::MergeLast(TResultField& last) {
    const std::string expression = KeyOf(last.GetSQLExpr());
    for (int i = 0; i + 1 < fields_.Count(); ++i)
        if (TResultField& field = *fields_.GetRField(i); KeyOf(field.GetSQLExpr()) == expression) {
            fields_.Delete(fields_.Count() - 1);
            return field;
        }
    if (!last.GetFields().empty())
        last.SetCaption(last.GenerateCaption());
    last.SetAlias("");
    last.SetHidden(!IsEverything());
    return last;
}

// --- ORDER BY.

// A position, an alias, or an expression: an alias goes before a column of a table.
void TSQLColumns::ReadOrderBy() {
    int position = 0;
    for (const TVParserResult::TSortItem& item : statement_.OrderBy) {
        TResultField* field = ByPosition(item.Text, item.Place);
        if (!field)
            field = ByAlias(item.Text);
        if (!field)
            field = &MergeLast(AddField(item.Text, item.Place));
        if (field->GetHidden() && statement_.Distinct)
            throw EVQueryPanelError(qpeHiddenDistinct, {item.Text}, item.Place);
        if (field->GetHidden() && field->GetFields().empty() && !field->GetAgregate())
            throw EVQueryPanelError(qpeCantBeKept, {item.Text}, item.Place);
        if (field->GetSorting() != stNoSort)
            continue; // what is sorted by it already stands in its order
        field->SetSorting(item.Descending ? stDescending : stAscending);
        field->SetSortOrder(++position);
    }
}

// --- GROUP BY.

// What a virtual field is grouped by may be columns that the model does not show.
bool TSQLColumns::IsOfVirtualField(std::string_view text) const {
    const std::string key = KeyOf(text);
    for (int i = 0; i < shown_ && names_.AreOfModel(); ++i)
        for (const TDSField* const entry : fields_.GetRField(i)->GetFields())
            if (entry->GetKind() == vfkVirtual)
                for (const std::string& reference : entry->GetReferences())
                    if (KeyOf(reference) == key)
                        return true;
    return false;
}

// A position, a column of a table, an alias, or an expression.
TResultField& TSQLColumns::ByGroupItem(const TVParserResult::TGroupItem& item) {
    TSQLColumn column;
    TResultField* field = ByPosition(item.Text, item.Place);
    if (!field && !names_.FindColumn(item.Text, item.Place, column))
        field = ByAlias(item.Text);
    if (!field)
        field = &MergeLast(AddField(item.Text, item.Place));
    if (field->GetAgregate() || field->GetFields().empty() || IsEverything())
        throw EVQueryPanelError(qpeCantBeKept, {"GROUP BY"}, item.Place);
    return *field;
}

void TSQLColumns::ReadGroupBy() {
    std::vector<std::string> keys;
    std::vector<std::string> ofVirtual;
    for (const TVParserResult::TGroupItem& item : statement_.GroupBy)
        if (IsOfVirtualField(item.Text))
            ofVirtual.push_back(keys.emplace_back(KeyOf(item.Text)));
        else
            keys.push_back(KeyOf(ByGroupItem(item).GetSQLExpr()));
    bool totals = false;
    for (int i = 0; i < fields_.Count(); ++i) {
        grouped_.push_back(fields_.GetRField(i));
        totals = totals || grouped_.back()->GetAgregate();
    }
    if (keys.empty() && !totals)
        return;
    for (TResultField* const field : grouped_)
        if (!field->GetAgregate())
            field->SetGrouping(GroupingOf(*field, keys));
    for (const std::string& key : ofVirtual)
        if (const std::vector<std::string> covered = CoveredKeys();
            !totals || std::find(covered.begin(), covered.end(), key) == covered.end())
            throw EVQueryPanelError(qpeCantBeKept, {"GROUP BY"}, statement_.GroupBy.front().Place);
    if (totals)
        return DropCovered();
    if (SaysDistinct())
        Distinct = true;
    else
        MakeKeys(keys);
}

// What the generator groups by for the shown columns.
std::vector<std::string> TSQLColumns::CoveredKeys() const {
    std::vector<std::string> covered;
    for (const TResultField* const field : grouped_)
        if (!field->GetHidden() && field->GetGrouping() == cgAsNeeded && !field->GetAgregate())
            for (std::string& text : GroupTexts(*field))
                covered.push_back(std::move(text));
    return covered;
}

// Hidden columns that only group, where a shown one makes the generator group by the same.
void TSQLColumns::DropCovered() {
    const std::vector<std::string> covered = CoveredKeys();
    std::erase_if(grouped_, [&](TResultField* field) {
        const bool isCovered =
            field->GetHidden() && field->GetSorting() == stNoSort && !field->GetAgregate() &&
            std::find(covered.begin(), covered.end(), KeyOf(field->GetSQLExpr())) != covered.end();
        if (isCovered)
            fields_.Delete(fields_.IndexOf(field));
        return isCovered;
    });
}

// What the generator groups by for a column, as keys.
std::vector<std::string> TSQLColumns::GroupTexts(const TResultField& field) const {
    const TDialect& dialect = EffectiveDialect(query_.GetDialect(), query_.GetSQLSyntax(), true);
    std::vector<std::string> texts;
    for (const TDSField* const entry : field.GetFields()) {
        const std::string text = entry->GetGroupByFields(QuotingOf(dialect, true));
        if (entry->GetKind() == vfkData)
            texts.push_back(KeyOf(text));
        else
            for (const std::string_view reference : SplitText(text, ','))
                texts.push_back(KeyOf(reference));
    }
    return texts;
}

// As it is needed where the generator groups by the same; any record's where nothing groups by it.
TColumnGrouping TSQLColumns::GroupingOf(const TResultField& field,
                                        const std::vector<std::string>& keys) const {
    const auto isKey = [&keys](const std::string& text) {
        return std::find(keys.begin(), keys.end(), text) != keys.end();
    };
    const std::vector<std::string> texts = GroupTexts(field);
    if (std::all_of(texts.begin(), texts.end(), isKey))
        return cgAsNeeded;
    if (isKey(KeyOf(field.GetSQLExpr())))
        return cgKey;
    if (keys.empty())
        throw EVQueryPanelError(qpeCantBeKept, {field.GetSQLExpr()}, PlaceOf(field));
    return cgAny;
}

TTextPlace TSQLColumns::PlaceOf(const TResultField& field) const {
    const int index = fields_.IndexOf(&field);
    return index < shown_ ? statement_.ResultFields.GetItem(index).Place : TTextPlace{1};
}

// Groups without a total, of columns that are all shown, are the different records.
bool TSQLColumns::SaysDistinct() const {
    return std::all_of(grouped_.begin(), grouped_.end(), [](const TResultField* field) {
        return !field->GetHidden() && field->GetGrouping() == cgAsNeeded && field->GetFormula() == "@1" &&
               field->GetFields().front()->GetKind() == vfkData;
    });
}

void TSQLColumns::MakeKeys(const std::vector<std::string>& keys) {
    for (TResultField* const field : grouped_)
        if (std::find(keys.begin(), keys.end(), KeyOf(field->GetSQLExpr())) != keys.end())
            field->SetGrouping(cgKey);
}

} // namespace lumora
