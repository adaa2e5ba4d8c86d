// Links: how two tables are joined.
#pragma once

#include "lumora/model/sql_syntax.h"
#include "lumora/platform/enum_names.h"
#include "lumora/platform/string_list.h"

#include <string>

namespace lumora {

class TDSTable;

enum TDSLinkType : std::uint8_t { ltInner, ltOuterLeft, ltOuterRight, ltOuterFull };
template <>
struct TEnumNames<TDSLinkType> {
    static constexpr std::string_view Names[] = {"ltInner", "ltOuterLeft", "ltOuterRight", "ltOuterFull"};
};

// Pair i joins Fields1[i] of Table1 with Fields2[i] of Table2 through Operators[i]. Owned by its model once
// added.
class TDSLink {
public:
    TDSLink(TDSTable& table1, TDSTable& table2) : Table1(&table1), Table2(&table2) {}

    // The join condition: "(A.x=B.y)" for each pair, joined with " and "; outer marks under ssOracle only.
    std::string GetSQLExpr(TSQLSyntax syntax, TNameQuoting quoting = nqPlain) const;
    void AppendSQLExpr(std::string& out, TSQLSyntax syntax, TNameQuoting quoting) const;
    // "Orders.CustNo->Customer.CustNo"
    std::string GetDisplayName() const;
    // The table at the other end.
    TDSTable* Neighbour(const TDSTable* table) const { return Table1 == table ? Table2 : Table1; }
    // "=" for every pair.
    void ApplyDefOperator();

    TDSTable* const Table1;
    TDSTable* const Table2;
    TStringList Fields1;
    TStringList Fields2;
    TStringList Operators;
    TDSLinkType LinkType = ltInner;
    bool QuoteFields = false;
};

} // namespace lumora
