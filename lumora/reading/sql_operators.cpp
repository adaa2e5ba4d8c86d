#include "lumora/reading/sql_operators.h"

#include "lumora/model/structure.h"
#include "lumora/query/field_by_sql.h"
#include "lumora/statement/dialects/dialect.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

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
            if (!matches || !TakePatterns(form, fit.Values))
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
    const std::string_view value = condition.Value;
    const std::string folded = FoldBlanks(value);
    constexpr std::size_t behindNot = 4;
    std::vector<TForm> forms;
    const auto plain = [&](std::string_view as, std::string_view what) {
        forms.push_back({Plain(condition, as, what), 0});
    };
    const auto negation = [&](std::string_view as, std::string_view what) {
        forms.push_back({Negated(condition, as, what), behindNot});
    };
    if (op == "like" || op == "ilike") {
        AddPatternForms(forms, condition, negated);
    } else if (op == "is" && (folded == "null" || folded == "notnull")) {
        const bool isNull = (folded == "null") != negated;
        plain("is", isNull ? "null" : "not null");
        negation("is", isNull ? "not null" : "null");
    } else if (op == "is distinct from" || op == "is not distinct from") {
        const bool differs = (op == "is distinct from") != negated;
        plain(differs ? "is distinct from" : "is not distinct from", value);
        if (folded == "null")
            plain("is", differs ? "not null" : "null");
        else if (differs)
            forms.push_back(
                {"(" + Plain(condition, "<>", value) + " or " + std::string(condition.Left) + " is null)",
                 std::string::npos});
        else if (onlyTrueCounts)
            plain("=", value);
    } else if (const std::string_view opposite = OppositeOf(op); !opposite.empty()) {
        plain(negated ? opposite : op, value);
        negation(negated ? op : opposite, value);
        if (condition.SubQuery && (op == "=" || op == "<>") && GivesOneRow(value)) {
            const bool isIn = (op == "=") != negated;
            isIn ? plain("in", value) : negation("in", value);
            if (!isIn)
                plain("not in", value);
        }
    } else if (negated) {
        negation(op, value);
        if (op == "in" || op == "between")
            plain("not " + std::string(op), value);
    } else {
        plain(op, value);
    }
    return forms;
}

// A clause that names the escape character says nothing where the pattern does not hold it; so an operator
// may have it or not.
void TSQLOperators::AddPatternForms(std::vector<TForm>& forms, const TSQLCondition& condition,
                                    bool negated) const {
    const std::string clause = FoldBlanks(dialect_.PatternClause);
    std::string_view pattern = condition.Value;
    const std::size_t literalEnd = pattern.rfind('\'', pattern.empty() ? 0 : pattern.size() - 2);
    bool isEscaped = false;
    if (!clause.empty() && literalEnd != std::string_view::npos) {
        const std::size_t word = FindNoCase(pattern, "escape");
        if (word != std::string_view::npos && FoldBlanks(pattern.substr(word)) == clause) {
            isEscaped = true;
            pattern = Trim(pattern.substr(0, word));
        }
    }
    for (const bool named : {isEscaped, !isEscaped}) {
        const std::string value = std::string(pattern) + (named ? std::string(dialect_.PatternClause) : "");
        const auto add = [&](std::string text, std::size_t fieldStart) {
            forms.push_back({std::move(text), fieldStart, true, isEscaped, named});
        };
        if (!negated) {
            add(Plain(condition, condition.Operator, value), 0);
            continue;
        }
        add(Negated(condition, condition.Operator, value), 4);
        add(Plain(condition, "not " + std::string(condition.Operator), value), 0);
    }
}

bool TSQLOperators::TakePatterns(const TForm& form, std::vector<TCapture>& values) const {
    return !form.IsPattern || std::all_of(values.begin(), values.end(),
                                          [&](TCapture& value) { return TakePattern(form, value); });
}

// The value as it is entered: one with wildcards of the template around it is meant as it stands, so it is
// escaped in the statement; any other is a pattern.
bool TSQLOperators::TakePattern(const TForm& form, TCapture& value) const {
    const char escape = dialect_.PatternEscape;
    if (!value.Quoted)
        return true; // a parameter
    if (!value.InPattern)
        return form.IsEscaped == form.IsClauseNamed || value.Text.find(escape) == std::string::npos;
    std::string text;
    for (std::size_t i = 0; i < value.Text.size(); ++i) {
        char c = value.Text[i];
        const bool isEscape = form.IsEscaped && c == escape;
        if (isEscape && ++i == value.Text.size())
            return false;
        if (!isEscape && (c == '%' || c == '_' || (c == '\\' && !form.IsEscaped)))
            return false;
        c = value.Text[i];
        text += c;
    }
    value.Text = std::move(text);
    return true;
}

// --- More around the field.

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
        TForm form{{}, 0, true, false, false};
        form.IsEscaped = form.IsClauseNamed =
            !dialect_.PatternClause.empty() &&
            FoldBlanks(op->GetSQLName()).find(FoldBlanks(dialect_.PatternClause)) != std::string::npos;
        if (!TakePatterns(form, fit.Values))
            continue;
        fit.Field = field;
        fit.Operator = op;
        break;
    }
    return fit;
}

} // namespace lumora
