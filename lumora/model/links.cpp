#include "lumora/model/links.h"

#include "lumora/model/structure.h"
#include "lumora/model/tables.h"

#include <algorithm>

namespace lumora {

namespace {

constexpr std::string_view OuterMark = " (+) ";

void AppendColumn(std::string& out, const TDSTable& table, std::string_view field, bool quoted,
                  TNameQuoting quoting) {
    table.AppendAlias(out, quoting);
    out += '.';
    if (quoted)
        table.GetStructure().GetSQLFormats().Quotes().Append(out, field, quoting);
    else
        out.append(field);
}

std::string_view LineOrNothing(const TStringList& lines, int i) {
    return i < lines.Count() ? lines[i] : std::string_view();
}

} // namespace

std::string TDSLink::GetSQLExpr(TSQLSyntax syntax, TNameQuoting quoting) const {
    std::string text;
    AppendSQLExpr(text, syntax, quoting);
    return text;
}

void TDSLink::AppendSQLExpr(std::string& out, TSQLSyntax syntax, TNameQuoting quoting) const {
    const bool marks = syntax == ssOracle;
    for (int i = 0; i < Fields1.Count(); ++i) {
        out += i == 0 ? "(" : " and (";
        AppendColumn(out, *Table1, Fields1[i], QuoteFields, quoting);
        if (marks && LinkType == ltOuterRight)
            out += OuterMark;
        out += LineOrNothing(Operators, i);
        AppendColumn(out, *Table2, LineOrNothing(Fields2, i), QuoteFields, quoting);
        if (marks && LinkType == ltOuterLeft)
            out += OuterMark;
        out += ')';
    }
}

std::string TDSLink::GetDisplayName() const {
    return Table1->GetAlias() + "." + Fields1.GetCommaText() + "->" + Table2->GetAlias() + "." +
           Fields2.GetCommaText();
}

void TDSLink::ApplyDefOperator() {
    Operators.Clear();
    for (int i = 0; i < Fields1.Count(); ++i)
        Operators.Add("=");
}

} // namespace lumora
