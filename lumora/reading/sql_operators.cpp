#include "lumora/reading/sql_operators.h"

#include "lumora/model/structure.h"
#include "lumora/query/field_by_sql.h"
#include "lumora/query/pattern_place.h"
#include "lumora/statement/dialects/dialect.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <optional>

namespace lumora {

namespace {

// The comparison that holds when the other does not.
std::string_view OppositeOf(std::string_view op) {
    static constexpr std::string_view pairs[][2] = {{"=", "<>"}, {"<", ">="}, {">", "<="}};
    for (const auto& [one, other] : pairs) {
        if (op == one)
            return other;
        if (op == other)
            return one;
    }
    return {};
}

// One total of a table that is not grouped: exactly one row.
bool GivesOneRow(std::string_view subQuery) {
    if (subQuery.starts_with('(') && subQuery.ends_with(')'))
        subQuery = subQuery.substr(1, subQuery.size() - 2);
    TVSQLParser parser;
    parser.SetStrict(true);
    parser.SetSQLText(subQuery);
    try {
        parser.Parse();
    } catch (const ESQLParserError&) {
        return false;
    }
    const TVParserResult& result = parser.GetResult();
    if (result.ResultFields.Count() != 1 || !result.GroupBy.empty())
        return false;
    const std::string text = FoldBlanks(result.ResultFields.GetItem(0).SQLExpr);
    const bool isTotal = text.starts_with("max(") || text.starts_with("min(") || text.starts_with("avg(") ||
                         text.starts_with("sum(") || text.starts_with("count(");
    return isTotal && text.find(')') == text.size() - 1;
}

std::string Plain(const TSQLCondition& condition, std::string_view op, std::string_view value) {
    return std::string(condition.Left).append(" ").append(op).append(" ").append(value);
}

std::string Negated(const TSQLCondition& condition, std::string_view op, std::string_view value) {
    return "not(" + Plain(condition, op, value) + ")";
}

} // namespace

TSQLFit TSQLOperators::Find(TDSField& field, const TSQLCondition& condition, bool onlyTrueCounts) const {
    TSQLFit fit;
    fit.Field = &field;
    if (Match(field, condition, condition.Negated, onlyTrueCounts, fit))
        return fit;
    fit.Opposite = true;
    if (!Match(field, condition, !condition.Negated, false, fit))
        fit.Operator = nullptr;
    return fit;
}

bool TSQLOperators::Match(TDSField& field, const TSQLCondition& condition, bool negated, bool onlyTrueCounts,
                          TSQLFit& fit) const {
    for (const TForm& form : FormsOf(condition, negated, onlyTrueCounts))
        for (TDSOperator* const op : field.GetOperators()) {
            if ((op->ValueKind == vkSubQuery) != condition.SubQuery)
                continue;
            std::string_view name = condition.Left;
            const TSQLPattern& pattern = op->GetPattern();
            const bool matches =
                form.FieldStart == std::string::npos
                    ? pattern.Match(form.Text, name, fit.Values) &&
                          FoldBlanks(name) == FoldBlanks(condition.Left)
                    : pattern.Match(form.Text, form.FieldStart, condition.Left.size(), fit.Values);
            if (!matches || !FitsPatterns(form, *op, fit.Values))
                continue;
            fit.Operator = op;
            return true;
        }
    return false;
}

// --- Other ways to write the same.

std::vector<TSQLOperators::TForm> TSQLOperators::FormsOf(const TSQLCondition& condition, bool negated,
                                                         bool onlyTrueCounts) const {
    const std::string_view op = condition.Operator == "!=" ? std::string_view("<>") : condition.Operator;
    const std::string folded = FoldBlanks(condition.Value);
    std::vector<TForm> forms;
    if (op == "like" || op == "ilike")
        AddPatternForms(forms, condition, negated);
    else if (op == "is" && (folded == "null" || folded == "notnull"))
        AddNullForms(forms, condition, (folded == "null") != negated);
    else if (op == "is distinct from" || op == "is not distinct from")
        AddDistinctForms(forms, condition, (op == "is distinct from") != negated, onlyTrueCounts);
    else if (!OppositeOf(op).empty())
        AddComparisonForms(forms, condition, negated ? OppositeOf(op) : op);
    else if (!negated)
        forms.push_back({Plain(condition, op, condition.Value), 0});
    else
        forms = {{Negated(condition, op, condition.Value), BehindNot},
                 {Plain(condition, "not " + std::string(op), condition.Value), 0}};
    return forms;
}

void TSQLOperators::AddNullForms(std::vector<TForm>& forms, const TSQLCondition& condition, bool isNull) {
    forms.push_back({Plain(condition, "is", isNull ? "null" : "not null"), 0});
    forms.push_back({Negated(condition, "is", isNull ? "not null" : "null"), BehindNot});
}

// "=" does for "is not distinct from" where it does not matter that it is unknown of nothing.
void TSQLOperators::AddDistinctForms(std::vector<TForm>& forms, const TSQLCondition& condition, bool differs,
                                     bool onlyTrueCounts) {
    const std::string_view value = condition.Value;
    forms.push_back({Plain(condition, differs ? "is distinct from" : "is not distinct from", value), 0});
    if (FoldBlanks(value) == "null")
        AddNullForms(forms, condition, !differs);
    else if (differs)
        forms.push_back({"(" + Plain(condition, "<>", value) + " or " + Plain(condition, "is", "null") + ")",
                         std::string::npos});
    else if (onlyTrueCounts)
        forms.push_back({Plain(condition, "=", value), 0});
}

// A comparison with one row is one with all that a sub-query of that row gives.
void TSQLOperators::AddComparisonForms(std::vector<TForm>& forms, const TSQLCondition& condition,
                                       std::string_view op) {
    const std::string_view value = condition.Value;
    forms.push_back({Plain(condition, op, value), 0});
    forms.push_back({Negated(condition, OppositeOf(op), value), BehindNot});
    if (!condition.SubQuery || (op != "=" && op != "<>") || !GivesOneRow(value))
        return;
    if (op == "=") {
        forms.push_back({Plain(condition, "in", value), 0});
    } else {
        forms.push_back({Negated(condition, "in", value), BehindNot});
        forms.push_back({Plain(condition, "not in", value), 0});
    }
}

// A clause that names the escape character says nothing where the pattern does not hold it; so an operator
// may have it or not.
void TSQLOperators::AddPatternForms(std::vector<TForm>& forms, const TSQLCondition& condition,
                                    bool negated) const {
    const std::string_view pattern = WithoutPatternClause(condition.Value, dialect_);
    const bool isEscaped = pattern.size() < condition.Value.size();
    for (const bool named : {isEscaped, !isEscaped}) {
        const std::string value = std::string(pattern) + (named ? std::string(dialect_.PatternClause) : "");
        const auto add = [&](std::string text, std::size_t fieldStart) {
            forms.push_back({std::move(text), fieldStart, true, isEscaped, named});
        };
        if (!negated) {
            add(Plain(condition, condition.Operator, value), 0);
            continue;
        }
        add(Negated(condition, condition.Operator, value), BehindNot);
        add(Plain(condition, "not " + std::string(condition.Operator), value), 0);
    }
}

// Whether each value that stands in a pattern of the operator is a text that it finds as it stands.
bool TSQLOperators::FitsPatterns(const TForm& form, const TDSOperator& op,
                                 const std::vector<TCapture>& values) const {
    for (std::size_t i = 0; form.IsPattern && i < values.size(); ++i) {
        const std::string& pattern = values[i].Text;
        if (!values[i].Quoted)
            continue; // a parameter
        const std::optional<std::string> text =
            TextOfPattern(op.GetSQLName(), static_cast<int>(i) + 1, pattern, form.IsEscaped, dialect_);
        const bool clauseMatters =
            form.IsEscaped != form.IsClauseNamed && pattern.find(dialect_.PatternEscape) != std::string::npos;
        if (!text || (*text == pattern && clauseMatters))
            return false;
    }
    return true;
}

// --- More around the field.

// A statement that the whole template fits names the escape character when the template does.
TSQLOperators::TForm TSQLOperators::FormOfTemplate(const TDSOperator& op) const {
    const std::string clause = FoldBlanks(dialect_.PatternClause);
    const bool isNamed = !clause.empty() && FoldBlanks(op.GetSQLName()).find(clause) != std::string::npos;
    return {{}, 0, true, isNamed, isNamed};
}

TSQLFit TSQLOperators::FindAround(std::string_view text) const {
    TSQLFit fit;
    for (int i = 0; i < model_.GetOperatCount(); ++i) {
        TDSOperator* const op = model_.GetOperator(i);
        std::string_view name;
        if (op->GetPattern().Head().empty() || !op->GetPattern().Match(text, name, fit.Values) ||
            name.empty())
            continue;
        TDSField* const field = FieldBySQL(model_, name, true);
        if (!field || std::find(field->GetOperators().begin(), field->GetOperators().end(), op) ==
                          field->GetOperators().end())
            continue;
        const TForm form = FormOfTemplate(*op);
        if (!FitsPatterns(form, *op, fit.Values))
            continue;
        fit.Field = field;
        fit.Operator = op;
        break;
    }
    return fit;
}

} // namespace lumora
