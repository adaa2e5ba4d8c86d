#include "lumora/statement/sql_printer.h"

#include "lumora/model/links.h"
#include "lumora/model/tables.h"
#include "lumora/platform/string_list.h"
#include "lumora/statement/dialects/dialect.h"

namespace lumora {

namespace {

constexpr std::string_view JoinWords[] = {"     INNER JOIN ", "     LEFT OUTER JOIN ",
                                          "     RIGHT OUTER JOIN ", "     FULL JOIN "};

} // namespace

TJoinKind JoinKindOf(const TDSLink& link, const TDSTable* joined) {
    const bool isSecond = link.Table2 == joined;
    switch (link.LinkType) {
    case ltOuterLeft:
        return isSecond ? jkLeft : jkRight;
    case ltOuterRight:
        return isSecond ? jkRight : jkLeft;
    case ltOuterFull:
        return jkFull;
    case ltInner:
        break;
    }
    return jkInner;
}

int TSQLPrinter::JoinCount() const {
    int count = -1;
    for (const TJoinedTable* table = select_.Tables.First; table; table = table->Next)
        ++count;
    return count;
}

void TSQLPrinter::Print(TStringList& lines, const TStringList& where) const {
    AppendSelect(lines.Tail());
    lines.EndLine();
    PrintFrom(lines);
    const bool conditions = select_.Where || !where.Empty();
    if (JoinsInWhere() || conditions)
        lines.Add("WHERE");
    if (JoinsInWhere())
        PrintLinks(lines, conditions ? " AND" : "");
    if (select_.Where)
        PrintWhere(lines);
    else
        lines.AddStrings(where);
    if (!select_.GroupBy.Empty()) {
        lines.Tail() += "GROUP BY ";
        AppendItems(lines.Tail(), select_.GroupBy);
        lines.EndLine();
    }
    if (select_.Having) {
        lines.Add("HAVING");
        PrintBracket(lines, *select_.Having, {});
    }
    if (!select_.OrderBy.Empty()) {
        lines.Tail() += "ORDER BY ";
        AppendItems(lines.Tail(), select_.OrderBy);
        lines.EndLine();
    }
    if (select_.Limit > 0)
        lines.Add(FillPattern(options_.Limit, {std::to_string(select_.Limit)}));
}

template <typename TItem>
void TSQLPrinter::AppendItems(std::string& line, const TNodeList<TItem>& items) const {
    for (const TItem* item = items.First; item; item = item->Next)
        line.append(item == items.First ? "" : ", ").append(statement_.View(item->Text));
}

void TSQLPrinter::AppendSelect(std::string& line) const {
    line += select_.Distinct ? "SELECT DISTINCT " : "SELECT ";
    if (select_.Columns.Empty())
        line += '*';
    else
        AppendItems(line, select_.Columns);
}

void TSQLPrinter::PrintFrom(TStringList& lines) const {
    const bool joins = options_.Syntax == ssSQL2;
    const int joinCount = JoinCount();
    const bool bracketed = joins && joinCount > 1 && options_.BracketJoins;
    std::string& line = lines.Tail();
    line += "FROM ";
    line.append(static_cast<std::size_t>(bracketed ? joinCount - 1 : 0), '(');
    for (const TJoinedTable* joined = select_.Tables.First; joined; joined = joined->Next) {
        const bool first = joined == select_.Tables.First;
        if (!first)
            line += joins ? JoinWords[joined->Kind] : "     ";
        joined->Table->AppendSQLExpr(line, options_.Quoting);
        if (!first && joins) {
            line += " ON ";
            joined->Link->AppendSQLExpr(line, ssSQL2, options_.Quoting);
        }
        if (bracketed && !first && joined->Next)
            line += ')';
        if (!joins && joined->Next)
            line += ", ";
        lines.EndLine();
    }
}

void TSQLPrinter::AppendLink(std::string& line, const TDSLink& link, TJoinKind kind) const {
    line += options_.BracketConditions ? "   (" : "   ";
    link.AppendSQLExpr(line, options_.Syntax == ssOracle && kind != jkInner ? ssOracle : ssSQL1,
                       options_.Quoting);
    if (options_.BracketConditions)
        line += ')';
}

// `after` stands behind the last one.
void TSQLPrinter::PrintLinks(TStringList& lines, std::string_view after) const {
    for (const TJoinedTable* joined = select_.Tables.First->Next; joined; joined = joined->Next) {
        AppendLink(lines.Tail(), *joined->Link, joined->Kind);
        lines.Tail() += joined->Next ? " AND" : after;
        lines.EndLine();
    }
}

void TSQLPrinter::PrintWhere(TStringList& lines) const {
    if (select_.Where)
        PrintBracket(lines, *select_.Where, {});
}

// What joins a member to the next one stands at the end of its last line.
void TSQLPrinter::PrintBracket(TStringList& lines, const TPredicate& bracket, std::string_view after) const {
    lines.Add(bracket.Negated ? " NOT (" : " (");
    const std::string_view connective = bracket.Any ? " OR" : " AND";
    for (const TPredicate* member = bracket.Members.First; member; member = member->Next) {
        const std::string_view behind = member->Next ? connective : std::string_view();
        if (member->IsBracket) {
            PrintBracket(lines, *member, behind);
            continue;
        }
        std::string& line = lines.Tail();
        if (member->Parenthesized)
            line += '(';
        line += statement_.View(member->Text);
        if (member->Parenthesized)
            line += ')';
        line += behind;
        lines.EndLine();
    }
    lines.Tail().append(")").append(after);
    lines.EndLine();
}

} // namespace lumora
