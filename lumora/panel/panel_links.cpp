#include "lumora/panel/panel_links.h"

#include "lumora/panel/Vquerpnl.h"
#include "lumora/query/errors.h"

namespace lumora {

TVQueryPanelLink* TVQueryPanelLinkList::GetItem(int index) const {
    if (index < 0 || index >= Count())
        throw EVQueryPanelError(qpeInvalidIndex, {std::to_string(index)});
    return links_[static_cast<std::size_t>(index)];
}

void TVQueryPanelLink::SetQueryPanel(TVQueryPanel* panel) {
    if (panel == panel_)
        return;
    if (panel_)
        panel_->DeleteLink(this);
    panel_ = panel;
    if (panel_)
        panel_->AddLink(this);
}

void TVQPBaseLink::QueryChanged(int index) {
    const TVQueryBase& base = *GetQueryBase();
    if (index != base.GetItemIndex() || !base.GetCurrentQuery())
        return;
    panel_.SetDescription(TStringList(base.GetCurrentQuery()->GetDescription()));
    panel_.SetQueryName(base.GetCurrentQuery()->GetQueryName());
    panel_.QueryChanged();
}

void TVQPBaseLink::QueryIndexChanged() {
    if (GetQueryBase()->GetCurrentQuery())
        panel_.LoadCurBaseQuery();
}

void TVQPBaseLink::QueryListChanged(TQBOperation operation, int index) {
    if (operation == qboItemDeleted && index == GetQueryBase()->GetItemIndex())
        panel_.ClearAll();
}

bool TVQPBaseLink::GetQueryContent(TStringList& content) {
    panel_.SaveToStrings(content);
    return true;
}

bool TVQPBaseLink::PutQueryContent(const TStringList& content) {
    panel_.LoadFromStrings(content);
    return true;
}

} // namespace lumora
