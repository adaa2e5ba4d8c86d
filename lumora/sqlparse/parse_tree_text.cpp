#include "lumora/sqlparse/parse_tree_text.h"

namespace lumora {

namespace {

class TTreePrinter {
public:
    explicit TTreePrinter(TStringList& lines) : lines_(lines) {}

    void Print(const TVParserResult& result) {
        Begin("distinct=").append(result.Distinct ? "1" : "0");
        lines_.EndLine();
        Begin("all=").append(result.SelectAll ? "1" : "0");
        lines_.EndLine();
        for (int i = 0; i < result.ResultFields.Count(); ++i) {
            const TSQLResultField& field = result.ResultFields.GetItem(i);
            Begin("field");
            Text("expr", field.SQLExpr);
            Text("name", field.FieldName);
            Text("alias", field.Alias);
            Number("sorting", field.Sorting);
            Number("order", field.SortOrder);
            lines_.EndLine();
        }
        for (const TSQLTable& table : result.Tables) {
            Begin("table");
            Text("name", table.TableName);
            Text("alias", table.Alias);
            lines_.EndLine();
        }
        PrintBracket(*result.RootBracket, 0);
    }

private:
    void PrintBracket(const TSQLBracket& bracket, std::size_t indent) {
        lines_.Tail().append(indent, ' ');
        Begin(bracket.Negated ? "not bracket " : "bracket ").append(bracket.Operator);
        lines_.EndLine();
        for (const TSQLConditionNode* node = bracket.GetFirst(); node; node = node->GetNext())
            if (node->IsBracket())
                PrintBracket(static_cast<const TSQLBracket&>(*node), indent + 2);
            else
                PrintCondition(static_cast<const TSQLCondition&>(*node), indent + 2);
    }

    void PrintCondition(const TSQLCondition& condition, std::size_t indent) {
        lines_.Tail().append(indent, ' ');
        Begin("cond");
        Number("neg", condition.Negated ? 1 : 0);
        Number("sub", condition.SubQuery ? 1 : 0);
        Text("left", condition.Left);
        Text("op", condition.Operator);
        Text("value", condition.Value);
        lines_.EndLine();
    }

    std::string& Begin(std::string_view text) { return lines_.Tail().append(text); }
    void Text(std::string_view name, std::string_view text) {
        lines_.Tail().append(" ").append(name).append("=<").append(text).append(">");
    }
    void Number(std::string_view name, int number) {
        lines_.Tail().append(" ").append(name).append("=").append(std::to_string(number));
    }

    TStringList& lines_;
};

} // namespace

void ParseTreeToStrings(const TVParserResult& result, TStringList& lines) {
    TTreePrinter(lines).Print(result);
}

} // namespace lumora
