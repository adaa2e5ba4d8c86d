#include "lumora/reading/sql_reader.h"

#include "lumora/model/structure.h"
#include "lumora/platform/formats.h"
#include "lumora/query/date_values.h"
#include "lumora/query/errors.h"
#include "lumora/query/field_by_sql.h"
#include "lumora/query/pattern_place.h"
#include "lumora/query/query_result.h"
#include "lumora/query/query_state.h"
#include "lumora/query/strict_checks.h"
#include "lumora/query/value_text.h"
#include "lumora/querytext/query_text.h"
#include "lumora/reading/moment_literals.h"
#include "lumora/reading/read_sql.h"
#include "lumora/reading/single_literals.h"
#include "lumora/reading/sql_columns.h"
#include "lumora/reading/sql_joins.h"
#include "lumora/reading/sql_names.h"
#include "lumora/reading/sql_operators.h"
#include "lumora/sqlparse/Vscanner.h"
#include "lumora/statement/dialects/dialect.h"
#include "lumora/support/string_helpers.h"

#include <utility>

namespace lumora {

TSQLReader::TSQLReader(TVQuery& query, const TTitles* subQueryTitles, int level)
    : query_(query),
      model_(*query.GetDbStruct()),
      subQueryTitles_(subQueryTitles),
      level_(level),
      strict_(query.GetStrict()) {}

void TSQLReader::Read(TVParserResult& statement) {
    query_.GetQResult().GetResultFields().Distinct = statement.Distinct;
    if (strict_)
        return ReadStrictly(statement);
    ReadFields(statement);
    ReadBracket(*query_.GetRootBracket(), *statement.RootBracket);
}

void TSQLReader::ReadStrictly(TVParserResult& statement) {
    TSQLNames names(query_, statement);
    TSQLJoins joins(query_, statement, names);
    TSQLColumns columns(query_, statement, names);
    columns.Read();
    TSQLOptions options = query_.GetSQLOptions();
    options.Exclude(soSelectDistinct);
    if (statement.Distinct || columns.Distinct)
        options.Include(soSelectDistinct);
    query_.SetSQLOptions(options);
    names_ = &names;
    const TSQLBracket& where = joins.WhereWithoutJoins();
    TFilterBracket& root = *query_.GetRootBracket();
    if (where.GetCount() < 2 || !ReadAsOne(root, where))
        ReadBracket(root, where);
    names_ = nullptr;
    joins.MakeQueryAgree(columns.TakesAnyRecord());
}

void TSQLReader::ReadFields(const TVParserResult& statement) {
    TRFieldList& fields = query_.GetQResult().GetResultFields();
    for (int i = 0; i < statement.ResultFields.Count(); ++i) {
        const TSQLResultField& parsed = statement.ResultFields.GetItem(i);
        TResultField* const field =
            fields.AddBySQLExpr(std::string(parsed.Alias), parsed.SQLExpr,
                                static_cast<TSortingType>(parsed.Sorting), parsed.SortOrder);
        if (parsed.Alias.empty()) {
            field->SetCaption(field->GenerateCaption());
            field->SetAlias("");
        }
    }
    fields.JustSorting = statement.SelectAll;
}

// --- Brackets.

void TSQLReader::ReadBracket(TFilterBracket& bracket, const TSQLBracket& parsed) {
    const bool any = parsed.Operator == "or";
    bracket.SetLinkType(parsed.Negated ? (any ? fltNone : fltNotAll) : (any ? fltAny : fltAll));
    const bool inNegation = std::exchange(inNegation_, inNegation_ || parsed.Negated);
    for (const TSQLConditionNode* node = parsed.GetFirst(); node; node = node->GetNext())
        ReadNode(bracket, *node);
    inNegation_ = inNegation;
}

void TSQLReader::ReadNode(TFilterBracket& bracket, const TSQLConditionNode& node) {
    if (!node.IsBracket())
        return ReadCondition(bracket, static_cast<const TSQLCondition&>(node));
    const auto& parsed = static_cast<const TSQLBracket&>(node);
    if (!strict_ || !ReadAsOne(bracket, parsed))
        ReadBracket(*bracket.AddNewBracket(), parsed);
}

// --- Conditions.

void TSQLReader::Refuse(const TSQLCondition& parsed) const {
    throw EVQueryPanelError(qpeCantBeKept, {parsed.GetSQLExpr()}, parsed.Place);
}

void TSQLReader::ReadCondition(TFilterBracket& bracket, const TSQLCondition& parsed) {
    if (!strict_)
        return AddCondition(bracket, parsed, FindPlainFit(parsed), false);
    const bool isOfModel = !names_ || names_->AreOfModel();
    if (isOfModel && ReadPredefined(bracket, parsed))
        return;
    const TSQLCondition condition = Resolved(parsed);
    if (!ReadPredefined(bracket, condition))
        AddCondition(bracket, condition, FindStrictFit(condition), false);
}

void TSQLReader::AddCondition(TFilterBracket& bracket, const TSQLCondition& parsed, const TSQLFit& fit,
                              bool negated) {
    TSimpleCond* const condition = Owner(bracket, fit.Opposite != negated).AddCond();
    condition->SetField(fit.Field ? fit.Field : model_.GetUnrecognizedField());
    condition->SetOperator(fit.Operator ? fit.Operator : model_.GetUnrecognizedOperator());
    SetValues(*condition, parsed, fit.Values);
}

TSQLFit TSQLReader::FindPlainFit(const TSQLCondition& parsed) {
    TSQLFit fit = FindFit(parsed, parsed.Negated, parsed.Operator);
    if (!fit.Operator)
        fit = LikeFallback(parsed);
    fit.Field = FieldBySQL(model_, parsed.Left, strict_);
    return fit;
}

namespace {

const TDialect& DialectOf(const TVQuery& query) {
    return EffectiveDialect(query.GetDialect(), query.GetSQLSyntax(), true);
}

} // namespace

// The condition with the names of the model, the field on its left side.
TSQLCondition TSQLReader::Resolved(const TSQLCondition& parsed) const {
    TSQLCondition condition = parsed;
    if (!names_)
        return condition;
    condition.Left = names_->WithFieldsAndTexts(parsed.Left, parsed.Place);
    if (!parsed.SubQuery)
        condition.Value = names_->WithFieldsAndTexts(parsed.Value, parsed.Place);
    static constexpr std::string_view mirrored[][2] = {{"=", "="}, {"<>", "<>"}, {"!=", "!="}, {"<", ">"},
                                                       {">", "<"}, {"<=", ">="}, {">=", "<="}};
    for (const auto& [op, other] : mirrored)
        if (condition.Operator == op && !FieldBySQL(model_, condition.Left, true) &&
            FieldBySQL(model_, condition.Value, true)) {
            std::swap(condition.Left, condition.Value);
            condition.Operator = other;
            break;
        }
    return condition;
}

TSQLFit TSQLReader::FindStrictFit(const TSQLCondition& parsed) const {
    const TSQLOperators operators(model_, DialectOf(query_));
    if (TDSField* const field = FieldBySQL(model_, parsed.Left, true)) {
        if (names_ && !names_->HasTablesOf(*field))
            throw EVQueryPanelError(qpeUnrecognizedField, {parsed.Left}, parsed.Place);
        TSQLFit fit = operators.Find(*field, parsed, !inNegation_);
        if (!fit.Operator && IsColumn(parsed.Value))
            Refuse(parsed);
        if (!fit.Operator)
            throw EVQueryPanelError(qpeUnrecognizedOperator, {parsed.GetSQLExpr()}, parsed.Place);
        return fit;
    }
    TSQLCondition plain = parsed;
    plain.Negated = false;
    TSQLFit fit = operators.FindAround(plain.GetSQLExpr());
    if (!fit.Field)
        RefuseLeft(parsed);
    fit.Opposite = parsed.Negated;
    return fit;
}

bool TSQLReader::IsColumn(std::string_view text) const {
    return FieldBySQL(model_, text, true) != nullptr;
}

// Names what begins a predicate that is none of the model's.
void TSQLReader::RefuseLeft(const TSQLCondition& parsed) const {
    const TVScanner scanner(parsed.Left);
    const std::string_view word = scanner.Token().Text;
    if (SameText(word, "exists") || SameText(word, "case"))
        throw EVQueryPanelError(qpeCantBeKept, {word}, parsed.Place);
    if (parsed.Operator.empty())
        Refuse(parsed);
    throw EVQueryPanelError(qpeUnrecognizedField, {parsed.Left}, parsed.Place);
}

// Several conditions that one operator stands for, "(x <> 1 or x is null)".
bool TSQLReader::ReadAsOne(TFilterBracket& bracket, const TSQLBracket& parsed) {
    std::string text = "(";
    TSQLCondition first;
    for (const TSQLConditionNode* node = parsed.GetFirst(); node; node = node->GetNext()) {
        if (node->IsBracket() || parsed.GetCount() > 4)
            return false;
        const TSQLCondition condition = Resolved(static_cast<const TSQLCondition&>(*node));
        if (node == parsed.GetFirst())
            first = condition;
        else
            text.append(" ").append(parsed.Operator).append(" ");
        text += condition.GetSQLExpr();
    }
    const TSQLFit fit = TSQLOperators(model_, DialectOf(query_)).FindAround(text + ")");
    if (!fit.Operator)
        return false;
    AddCondition(bracket, first, fit, parsed.Negated);
    return true;
}

// A predicate of the model that stands in the statement as it is, or its opposite.
bool TSQLReader::ReadPredefined(TFilterBracket& bracket, const TSQLCondition& parsed) {
    struct TForm {
        std::string Text;
        bool Opposite;
    };
    TSQLCondition plain = parsed;
    plain.Negated = false;
    const std::string text = plain.GetSQLExpr();
    const TForm forms[] = {
        {text, parsed.Negated}, {"not " + text, !parsed.Negated}, {"not(" + text + ")", !parsed.Negated}};
    std::vector<TCapture> values;
    for (const bool opposite : {false, true})
        for (const TForm& form : forms)
            for (int i = 0; form.Opposite == opposite && i < model_.GetConditionCount(); ++i) {
                TDSCondition* const target = model_.GetCondition(i);
                if (!target->GetPattern().Match(form.Text, values) || values.size() > 2)
                    continue;
                SetValues(*Owner(bracket, opposite).AddCustomCond(target), parsed, values);
                return true;
            }
    return false;
}

// The bracket itself, or a new one in it that turns its row into the opposite.
TFilterBracket& TSQLReader::Owner(TFilterBracket& bracket, bool opposite) {
    if (!opposite)
        return bracket;
    TFilterBracket* const none = bracket.AddNewBracket();
    none->SetLinkType(fltNone);
    return *none;
}

// --- Operators.

// The operators whose template begins as a condition with this operator does.
const std::vector<TDSOperator*>& TSQLReader::Candidates(bool negated, std::string_view op) {
    std::string key(negated ? "!" : " ");
    key.append(op);
    const auto [known, isNew] = candidates_.try_emplace(std::move(key));
    if (!isNew)
        return known->second;
    const std::string head = negated ? "not(" : "";
    for (int i = 0; i < model_.GetOperatCount(); ++i) {
        TDSOperator* const candidate = model_.GetOperator(i);
        const TSQLPattern& pattern = candidate->GetPattern();
        if (pattern.Head() == head && pattern.Tail().starts_with(op))
            known->second.push_back(candidate);
    }
    return known->second;
}

// "!=" and a negated "=" are other ways to write "<>". A value that is a sub-query belongs to operators that
// take one.
TSQLFit TSQLReader::FindFit(const TSQLCondition& parsed, bool negated, std::string_view op) {
    if (op == "!=")
        op = "<>";
    if (negated && op == "=") {
        negated = false;
        op = "<>";
    }
    const std::size_t fieldStart = negated ? 4 : 0;
    text_.assign(negated ? "not(" : "")
        .append(parsed.Left)
        .append(" ")
        .append(op)
        .append(" ")
        .append(parsed.Value);
    text_.append(negated ? ")" : "");
    TSQLFit fit;
    for (const bool wanted : {true, false})
        for (TDSOperator* const candidate : Candidates(negated, op)) {
            const bool takesSubQuery = candidate->ValueKind == vkSubQuery;
            if ((takesSubQuery == parsed.SubQuery) != wanted || (takesSubQuery && !parsed.SubQuery))
                continue;
            if (!candidate->GetPattern().Match(text_, fieldStart, parsed.Left.size(), fit.Values))
                continue;
            fit.Operator = candidate;
            return fit;
        }
    fit.Values.clear();
    return fit;
}

// A pattern of another form is taken as "contains", or "starts with".
TSQLFit TSQLReader::LikeFallback(const TSQLCondition& parsed) {
    TSQLFit fit;
    if (parsed.Operator != "like")
        return fit;
    fit.Operator = model_.OperatorByName("contains");
    if (!fit.Operator)
        fit.Operator = model_.OperatorByName("startswith");
    std::string_view value = parsed.Value;
    const bool quoted = value.size() >= 2 && value.front() == '\'' && value.back() == '\'';
    if (quoted)
        value = value.substr(1, value.size() - 2);
    if (value.starts_with('%'))
        value.remove_prefix(1);
    if (value.ends_with('%'))
        value.remove_suffix(1);
    fit.Values.push_back({quoted ? ReplaceText(value, "''", "'") : std::string(value), quoted, true});
    return fit;
}

TDSOperator* TSQLReader::FindOperator(const TSQLCondition& parsed, bool negated, std::string& value1,
                                      std::string& value2, TStringList& subQuery) {
    TSQLFit fit = FindFit(parsed, negated, parsed.Operator);
    if (!fit.Operator)
        fit = LikeFallback(parsed);
    value1 = fit.Values.empty() ? std::string() : fit.Values[0].Text;
    value2 = fit.Values.size() < 2 ? std::string() : fit.Values[1].Text;
    if (fit.Operator && fit.Operator->ValueKind == vkSubQuery)
        UnfoldSubQuery(value1, subQuery);
    return fit.Operator;
}

// --- Values.

void TSQLReader::SetValues(TFilterCond& condition, const TSQLCondition& parsed,
                           const std::vector<TCapture>& values) {
    const int count = std::min<int>({condition.GetValueCount(), 2, static_cast<int>(values.size())});
    for (int value = 1; value <= count; ++value) {
        const TCapture& capture = values[static_cast<std::size_t>(value - 1)];
        if (!capture.Quoted && capture.Text.starts_with(':')) {
            if (strict_ && parsed.Operator == "like")
                Refuse(parsed); // the statement does not hold the parameter's pattern
            if (strict_ && !IsParamName(std::string_view(capture.Text).substr(1)))
                Refuse(parsed);
            condition.SetValueIsParam(value, true);
            condition.GetParam(value)->Name = capture.Text.substr(1);
        } else {
            condition.SetValue(value, ValueOf(condition, value, parsed, capture));
        }
    }
    if (condition.GetValueKind(1) == vkSubQuery && count > 0)
        ReadSubQuery(condition, parsed, values[0].Text);
}

void TSQLReader::ReadSubQuery(TFilterCond& condition, const TSQLCondition& parsed, const std::string& sql) {
    TStringList lines;
    try {
        UnfoldSubQuery(sql, lines);
    } catch (const EVLumoraError&) {
        if (strict_)
            Refuse(parsed); // the lines that the error counts are the sub-query's own
        throw;
    }
    condition.SetSubQuery(lines);
}

namespace {

// A number as it is entered: its sign beside it, a whole one without a fraction of zeros.
std::string NumberText(TFieldType type, const std::string& text) {
    if (!IsNumber(type))
        return text;
    std::string number;
    for (const char c : text)
        if (!IsBlank(c) && (c != '+' || !number.empty()))
            number += c;
    const std::size_t point = number.find('.');
    const bool isWhole = point != std::string::npos && point > 0 && IsDigit(number[point - 1]) &&
                         number.find_first_not_of('0', point + 1) == std::string::npos;
    if (isWhole && type != ftFloat && type != ftCurrency && type != ftBCD)
        number.resize(point);
    return number;
}

} // namespace

std::string TSQLReader::ValueOf(const TFilterCond& condition, int value, const TSQLCondition& parsed,
                                const TCapture& capture) {
    switch (condition.GetValueKind(value)) {
    case vkSubQuery:
        return capture.Text;
    case vkList:
        if (capture.Quoted && strict_)
            Refuse(parsed);
        return ListValue(condition, parsed, capture.Text);
    case vkScalar:
        break;
    }
    return DisplayValue(condition, value, parsed,
                        capture.Quoted || !strict_ ? capture.Text
                                                   : NumberText(condition.GetValueType(value), capture.Text),
                        capture.Quoted);
}

namespace {

// The items of an SQL list, split at commas outside quotes and parentheses.
std::vector<std::string_view> SplitSQLList(std::string_view text) {
    std::vector<std::string_view> items;
    int depth = 0;
    std::size_t start = 0;
    bool inLiteral = false;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        const char c = i < text.size() ? text[i] : ',';
        if (i < text.size() && c == '\'')
            inLiteral = !inLiteral;
        if (inLiteral && i < text.size())
            continue;
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (c == ',' && (depth <= 0 || i == text.size())) {
            items.push_back(Trim(text.substr(start, i - start)));
            start = i + 1;
        }
    }
    return items;
}

bool IsLiteral(std::string_view text) {
    if (text.size() < 2 || text.front() != '\'' || text.back() != '\'')
        return false;
    text = text.substr(1, text.size() - 2);
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] == '\'' && (i + 1 == text.size() || text[++i] != '\''))
            return false;
    return true;
}

} // namespace

// Single quotes become double quotes, as list values are entered. A strict reader takes the items apart.
std::string TSQLReader::ListValue(const TFilterCond& condition, const TSQLCondition& parsed,
                                  std::string_view items) {
    const bool dates = IsDateOrTime(condition.GetValueType(1));
    if (!strict_ && !dates)
        return ReplaceText(items, "'", "\"");
    std::string list;
    for (const std::string_view item : SplitSQLList(items)) {
        const bool quoted = IsLiteral(item);
        const std::string inner =
            quoted ? ReplaceText(item.substr(1, item.size() - 2), "''", "'") : std::string(item);
        const std::string value = DisplayValue(condition, 1, parsed, inner, quoted);
        list.append(list.empty() ? "" : ",");
        if (quoted && !dates)
            list.append(QuoteText(value, '"', '"'));
        else
            list.append(value);
    }
    return list;
}

// Dates and times as the user writes them. What the generator put for an empty one is empty again. A strict
// reader refuses what is no value (another column, an expression) and what would come back as another.
std::string TSQLReader::DisplayValue(const TFilterCond& condition, int value, const TSQLCondition& parsed,
                                     const std::string& text, bool quoted) {
    const TFieldType type = condition.GetValueType(value);
    if (strict_)
        return CheckedValue(condition, value, parsed, text, quoted);
    if (!IsDateOrTime(type))
        return text;
    const std::optional<TReadDateTime> date = ReadSQLDate(model_.GetSQLFormats(), type, text);
    if (!date)
        return text == "00/00/00" ? std::string() : text;
    return type == ftTime ? TimeToStr(date->Value) : DateTimeToStr(date->Value);
}

std::string TSQLReader::CheckedValue(const TFilterCond& condition, int value, const TSQLCondition& parsed,
                                     const std::string& text, bool quoted) const {
    const TFieldType type = condition.GetValueType(value);
    const TDialect& dialect = DialectOf(query_);
    if (IsDateOrTime(type)) {
        std::optional<std::string> date =
            ValueOfMomentLiteral(model_, dialect, condition, value, text, quoted);
        if (!date || !IsValidValue(type, *date))
            Refuse(parsed);
        return *std::move(date);
    }
    if (ComparesSingle(condition, type)) {
        std::optional<std::string> number = ValueOfSingle(text, dialect);
        if (!number)
            Refuse(parsed);
        return *std::move(number);
    }
    if (IsCheckedType(type) ? !IsValidValue(type, text) : !quoted)
        Refuse(parsed);
    if (IsCheckedType(type))
        return text;
    const bool hasClause = WithoutPatternClause(parsed.Value, dialect).size() < parsed.Value.size();
    std::optional<std::string> found = TextOfPattern(condition.GetSQLExpr(), value, text, hasClause, dialect);
    if (!found)
        Refuse(parsed);
    return *std::move(found);
}

// --- Sub-queries.

// A query text inside a query text doubles its quotes, so deep ones are not unfolded: their SQL alone is
// kept.
void TSQLReader::UnfoldSubQuery(std::string_view sql, TStringList& lines) const {
    constexpr int maxUnfoldedLevels = 6;
    lines.Clear();
    if (level_ == maxUnfoldedLevels)
        return;
    TVQuery subQuery(model_);
    subQuery.SetSQLOptions(query_.GetSQLOptions());
    subQuery.SetSQLSyntax(query_.GetSQLSyntax());
    subQuery.SetStrict(strict_);
    subQuery.SetDialect(query_.GetDialect());
    ReadSQL(subQuery, TStringList(sql), subQueryTitles_, level_ + 1);
    WriteQueryText(subQuery, lines, subQueryTitles_);
}

void ReadSQL(TVQuery& query, const TStringList& lines, const TTitles* subQueryTitles, int level) {
    query.CheckIfDBStructAssigned();
    const TQueryStateGuard guard(query, stLoading);
    query.ClearAll();
    TVSQLParser parser;
    parser.SetStrict(query.GetStrict());
    parser.SetSQL(lines);
    parser.Parse();
    TSQLReader(query, subQueryTitles, level).Read(parser.GetResult());
}

} // namespace lumora
