// Tables that a query joins whether or not anything in it names them, each in its own way.
#pragma once

#include "lumora/statement/join_kind.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TDSLink;
class TDSTable;
class TVCustomDBStructure;

// Kept as text, so that it outlives a change of the model; building the query finds what it names.
struct TShownTable {
    std::string Alias;
    // The table that it is joined to, and the columns of the link, "own=partner's,..."; none: by the model's
    // shortest chain of links from the first table on.
    std::string Partner;
    std::string Columns;
    TJoinKind Kind = jkInner; // the partner's side is the left one
};

using TShownTableList = std::vector<TShownTable>;

// The table that is joined so. EVQueryPanelError when a column's name would not come back from a text.
TShownTable ShownTable(const TDSTable& table, const TDSLink& link, TJoinKind kind);
// The link, or none when the model does not have it any more.
TDSLink* FindLinkOf(const TShownTable& shown, const TVCustomDBStructure& model);

// "Alias" or "Alias inner Partner:own=partner's"; as items of a comma text.
std::string ShownTablesToText(const TShownTableList& tables);
// What is no such item is passed over.
TShownTableList ShownTablesFromText(std::string_view text);

// What a query text with such tables, or with a main table of its own, needs of its reader.
inline constexpr std::string_view NeedTables = "Tables";
inline constexpr std::string_view NeedMainTable = "MainTable";

} // namespace lumora
