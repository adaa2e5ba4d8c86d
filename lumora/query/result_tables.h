// The tables that take part in a query, in join order.
#pragma once

#include "lumora/statement/join_kind.h"

#include <string_view>
#include <vector>

namespace lumora {

class TDSLink;
class TDSTable;

struct TResultTable {
    TDSTable* Table = nullptr;
    TDSLink* Link = nullptr; // joins the table to one before it; none for the table that starts the chain
    TJoinKind Kind = jkInner;
};

class TRTableList {
public:
    int Count() const { return static_cast<int>(items_.size()); }
    bool Empty() const { return items_.empty(); }
    const TResultTable& GetItem(int index) const; // EVQueryPanelError for a bad index, as Delete
    // Appends a table without a link; one with a link goes right behind the table that the link joins it to.
    // EVQueryPanelError when that one is not in the list. Returns the position.
    int Add(TDSTable* table, TDSLink* link);
    // Behind all others, joined in another way than the link says. The same error.
    void Append(TDSTable* table, TDSLink* link, TJoinKind kind);
    // The first table of that name, letter case ignored.
    const TResultTable* Find(std::string_view name) const;
    int IndexOf(const TDSTable* table) const;
    void Delete(int index);
    void Clear() { items_.clear(); }

private:
    std::vector<TResultTable> items_;
};

} // namespace lumora
