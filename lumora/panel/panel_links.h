// Listeners of a query panel, and the panel's own link to a query base.
#pragma once

#include "lumora/platform/notice_list.h"
#include "lumora/querybase/Vqrybase.h"

namespace lumora {

class TVQueryPanel;

// Attaches itself to a panel and is told of its changes; the panel does not own it.
class TVQueryPanelLink {
public:
    TVQueryPanelLink() = default;
    TVQueryPanelLink(const TVQueryPanelLink&) = delete;
    TVQueryPanelLink& operator=(const TVQueryPanelLink&) = delete;
    virtual ~TVQueryPanelLink() { SetQueryPanel(nullptr); }

    virtual void QueryPanelChanged() {}
    virtual void QueryParamsChanged() {}

    TVQueryPanel* GetQueryPanel() const { return panel_; }
    void SetQueryPanel(TVQueryPanel* panel);

private:
    TVQueryPanel* panel_ = nullptr;
};

class TVQueryPanelLinkList {
public:
    int Count() const { return static_cast<int>(links_.Count()); }
    TVQueryPanelLink* GetItem(int index) const; // EVQueryPanelError for a bad index
    void Add(TVQueryPanelLink* link) { links_.Add(*link); }
    void Remove(TVQueryPanelLink* link) { links_.Remove(*link); }
    // Calls `tell` with each link; links may come and go meanwhile.
    template <typename TTell>
    void ForEach(TTell tell) {
        links_.ForEach(tell);
    }

private:
    TNoticeList<TVQueryPanelLink> links_;
};

// Follows the base's current query and hands the panel's query over when it is to be stored.
class TVQPBaseLink : public TVQueryBaseLink {
public:
    explicit TVQPBaseLink(TVQueryPanel& panel) : panel_(panel) {}

    void QueryChanged(int index) override;
    void QueryIndexChanged() override;
    void QueryListChanged(TQBOperation operation, int index) override;
    bool GetQueryContent(TStringList& content) override;
    bool PutQueryContent(const TStringList& content) override;

private:
    TVQueryPanel& panel_;
};

} // namespace lumora
