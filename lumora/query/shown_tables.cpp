#include "lumora/query/shown_tables.h"

#include "lumora/model/structure.h"
#include "lumora/query/errors.h"
#include "lumora/support/string_helpers.h"

namespace lumora {

namespace {

constexpr std::string_view KindNames[] = {"inner", "left", "right", "full"};

// The pairs of columns, those of the given table first.
std::string ColumnsOf(const TDSLink& link, const TDSTable& table) {
    const bool isFirst = link.Table1 == &table;
    const TStringList& own = isFirst ? link.Fields1 : link.Fields2;
    const TStringList& others = isFirst ? link.Fields2 : link.Fields1;
    std::string text;
    for (int i = 0; i < own.Count(); ++i) {
        text.append(i == 0 ? "" : ",").append(own[i]) += '=';
        text.append(i < others.Count() ? others[i] : std::string_view());
    }
    return text;
}

TShownTable ReadItem(std::string_view item) {
    TShownTable table;
    const std::size_t kindAt = item.find(' ');
    table.Alias = item.substr(0, kindAt);
    if (kindAt == std::string_view::npos)
        return table;
    item.remove_prefix(kindAt + 1);
    const std::size_t partnerAt = item.find(' ');
    for (std::size_t kind = 0; kind < std::size(KindNames); ++kind)
        if (item.substr(0, partnerAt) == KindNames[kind])
            table.Kind = static_cast<TJoinKind>(kind);
    item.remove_prefix(partnerAt == std::string_view::npos ? item.size() : partnerAt + 1);
    const std::size_t columnsAt = item.find(':');
    table.Partner = item.substr(0, columnsAt);
    if (columnsAt != std::string_view::npos)
        table.Columns = item.substr(columnsAt + 1);
    return table;
}

} // namespace

TShownTable ShownTable(const TDSTable& table, const TDSLink& link, TJoinKind kind) {
    const TDSTable& partner = *link.Neighbour(&table);
    if (partner.GetAlias().find(':') != std::string::npos)
        throw EVQueryPanelError(qpeOtherJoin, {table.GetAlias()});
    return {table.GetAlias(), partner.GetAlias(), ColumnsOf(link, table), kind};
}

TDSLink* FindLinkOf(const TShownTable& shown, const TVCustomDBStructure& model) {
    const TDSTable* const table = model.TableByName(tnAlias, shown.Alias);
    const TDSTable* const partner = model.TableByName(tnAlias, shown.Partner);
    if (!table || !partner)
        return nullptr;
    for (TDSLink* const link : table->GetLinks())
        if (link->Neighbour(table) == partner && SameText(ColumnsOf(*link, *table), shown.Columns))
            return link;
    return nullptr;
}

std::string ShownTablesToText(const TShownTableList& tables) {
    TStringList items;
    for (const TShownTable& table : tables) {
        std::string item = table.Alias;
        if (!table.Partner.empty())
            item.append(" ")
                .append(KindNames[table.Kind])
                .append(" ")
                .append(table.Partner)
                .append(":")
                .append(table.Columns);
        items.Add(item);
    }
    return items.GetCommaText();
}

TShownTableList ShownTablesFromText(std::string_view text) {
    TStringList items;
    items.SetCommaText(text);
    TShownTableList tables;
    for (const std::string_view item : items)
        if (!item.empty())
            tables.push_back(ReadItem(item));
    return tables;
}

} // namespace lumora
