#include "lumora/query/result_tables.h"

#include "lumora/model/links.h"
#include "lumora/model/tables.h"
#include "lumora/platform/ascii.h"
#include "lumora/query/errors.h"

namespace lumora {

const TResultTable& TRTableList::GetItem(int index) const {
    return items_[CheckedIndex(index, items_.size())];
}

void TRTableList::Delete(int index) {
    CheckedIndex(index, items_.size());
    items_.erase(items_.begin() + index);
}

int TRTableList::Add(TDSTable* table, TDSLink* link) {
    int position = Count();
    if (link) {
        position = IndexOf(link->Neighbour(table)) + 1;
        if (position == 0)
            throw EVQueryPanelError(qpeWrongLink);
    }
    items_.insert(items_.begin() + position, {table, link, link ? JoinKindOf(*link, table) : jkInner});
    return position;
}

void TRTableList::Append(TDSTable* table, TDSLink* link, TJoinKind kind) {
    if (IndexOf(link->Neighbour(table)) < 0)
        throw EVQueryPanelError(qpeWrongLink);
    items_.push_back({table, link, kind});
}

const TResultTable* TRTableList::Find(std::string_view name) const {
    for (const TResultTable& item : items_)
        if (SameText(item.Table->GetName(), name))
            return &item;
    return nullptr;
}

int TRTableList::IndexOf(const TDSTable* table) const {
    for (int i = 0; i < Count(); ++i)
        if (items_[static_cast<std::size_t>(i)].Table == table)
            return i;
    return -1;
}

} // namespace lumora
