// The link list form: one link per line, "Orders-Customer:CustNo=CustNo,Region=Region".
#include "lumora/model/structure.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

struct TLinkTables {
    TDSTable* Table1 = nullptr;
    TDSTable* Table2 = nullptr;
    std::string_view Pairs;
};

std::size_t LongestTableName(const TVCustomDBStructure& structure) {
    std::size_t longest = 0;
    for (int i = 0; i < structure.GetTableCount(); ++i)
        longest = std::max(longest, structure.GetTable(i)->GetName().size());
    return longest;
}

// A name may hold "-" and ":" itself, so the line is split where both sides name tables. Names longer than
// the longest table name are not looked up, which bounds the work on lines that are no links.
TLinkTables SplitLinkLine(const TVCustomDBStructure& structure, std::string_view text) {
    const std::size_t longest = LongestTableName(structure);
    for (std::size_t dash = text.find('-'); dash != std::string_view::npos && dash <= longest;
         dash = text.find('-', dash + 1)) {
        TDSTable* const table1 = structure.TableByName(tnName, text.substr(0, dash));
        if (!table1)
            continue;
        const std::string_view rest = text.substr(dash + 1);
        for (std::size_t colon = std::min(rest.find(':'), rest.size()); colon <= longest;
             colon = std::min(rest.find(':', colon + 1), rest.size())) {
            if (TDSTable* const table2 = structure.TableByName(tnName, rest.substr(0, colon)))
                return {table1, table2, rest.substr(std::min(colon + 1, rest.size()))};
            if (colon == rest.size())
                break;
        }
    }
    const std::size_t dash = std::min(text.find('-'), text.size());
    const std::string_view name1 = text.substr(0, dash);
    if (!structure.TableByName(tnName, name1))
        throw EVDBStructError(dseNoTable, {name1});
    const std::string_view rest = text.substr(std::min(dash + 1, text.size()));
    throw EVDBStructError(dseNoTable, {rest.substr(0, rest.find(':'))});
}

void AddPair(TDSLink& link, std::string_view pair) {
    static constexpr std::string_view operators[] = {"!=", "<>", "<=", ">=", "=", "<", ">"};
    for (const std::string_view op : operators) {
        const std::size_t at = pair.find(op);
        if (at == std::string_view::npos)
            continue;
        link.Fields1.Add(Trim(pair.substr(0, at)));
        link.Operators.Add(op);
        link.Fields2.Add(Trim(pair.substr(at + op.size())));
        return;
    }
}

} // namespace

int TVCustomDBStructure::AddLinkByExpr(std::string_view text) {
    const TLinkTables tables = SplitLinkLine(*this, Trim(text));
    auto link = std::make_unique<TDSLink>(*tables.Table1, *tables.Table2);
    for (const std::string_view pair : SplitText(tables.Pairs, ','))
        AddPair(*link, pair);
    return AddLinkByRef(std::move(link));
}

void TVCustomDBStructure::SaveLinksToStrings(TStringList& lines) const {
    lines.Clear();
    for (const auto& link : links_) {
        std::string line = link->Table1->GetName() + "-" + link->Table2->GetName() + ":";
        for (int i = 0; i < link->Fields1.Count(); ++i) {
            line.append(i == 0 ? "" : ",").append(link->Fields1[i]);
            line.append(i < link->Operators.Count() ? link->Operators[i] : "=");
            line.append(i < link->Fields2.Count() ? link->Fields2[i] : "");
        }
        lines.Add(line);
    }
}

} // namespace lumora
