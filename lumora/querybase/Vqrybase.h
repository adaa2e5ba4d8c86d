// The query base: named queries and a current one, and the links that keep panels in step with it. Where the
// queries are stored is for descendants to say.
#pragma once

#include "lumora/model/Lmglobal.h"
#include "lumora/platform/component.h"
#include "lumora/platform/notice_list.h"
#include "lumora/platform/string_list.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TVQueryBase;

enum TQueryBaseErrorCode : int {
    qbeNoQueryBase = 1,
    qbeConflict,    // what is stored is not what was read: someone else changed, deleted or made it
    qbeNoSuchQuery, // it is not stored any more
    qbeNoText,      // no panel gives one
    qbeBadName      // none, or one that the storage cannot take
};

class EVQueryBaseError : public EVLumoraError {
public:
    using EVLumoraError::EVLumoraError;
};

enum TQBOperation : std::uint8_t { qboListLoaded, qboListCleared, qboItemAdded, qboItemDeleted };
template <>
struct TEnumNames<TQBOperation> {
    static constexpr std::string_view Names[] = {"qboListLoaded", "qboListCleared", "qboItemAdded",
                                                 "qboItemDeleted"};
};

// One named query. Owned by its base once added.
class TVQueryItem {
public:
    virtual ~TVQueryItem() = default;

    // Fills the list with the stored query text, or stores it.
    virtual void LoadContent(TStringList& content);
    virtual void SaveContent(const TStringList& content);

    const std::string& GetQueryName() const { return queryName_; }
    void SetQueryName(const std::string& name);
    const std::string& GetDescription() const { return description_; }
    void SetDescription(const std::string& description);
    TVQueryBase* GetQueryBase() const { return base_; }

    // Asks the linked panels for their query; EVQueryBaseError when the item has no base.
    bool TakeContent(TStringList& content);
    bool GiveContent(TStringList& content);
    void Load();
    virtual void Save();
    // A panel could not read the text that LoadContent gave, and does not show this query.
    virtual void ContentRefused() {}

private:
    friend class TVQueryBase;

    void Changed();
    TVQueryBase& CheckBase() const;

    TVQueryBase* base_ = nullptr;
    std::string queryName_;
    std::string description_;
};

// A listener of a base; it attaches and detaches itself.
class TVQueryBaseLink {
public:
    TVQueryBaseLink() = default;
    TVQueryBaseLink(const TVQueryBaseLink&) = delete;
    TVQueryBaseLink& operator=(const TVQueryBaseLink&) = delete;
    virtual ~TVQueryBaseLink() { SetQueryBase(nullptr); }

    virtual void QueryChanged(int) {}
    virtual void QueryIndexChanged() {}
    virtual void QueryListChanged(TQBOperation, int) {}
    // Whether the list was filled, or taken.
    virtual bool GetQueryContent(TStringList&) { return false; }
    virtual bool PutQueryContent(const TStringList&) { return false; }

    TVQueryBase* GetQueryBase() const { return base_; }
    void SetQueryBase(TVQueryBase* base);

private:
    TVQueryBase* base_ = nullptr;
};

class TVQueryBase : public TComponent {
public:
    using TNotifyEvent = std::function<void(TVQueryBase& sender)>;

    explicit TVQueryBase(TComponent* owner = nullptr) : TComponent(owner) {}
    ~TVQueryBase() override;

    std::string_view ClassName() const override { return "TVQueryBase"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    void Open();
    void Close();
    bool GetActive() const { return active_; }
    int GetItemIndex() const { return itemIndex_; }
    void SetItemIndex(int index);

    int GetCount() const { return static_cast<int>(items_.size()); }
    TVQueryItem* GetQuery(int index) const; // EListError for a bad index
    TVQueryItem* GetCurrentQuery() const;   // none when there is no current one
    int IndexByName(std::string_view name) const;
    int AddItem(std::unique_ptr<TVQueryItem> item);
    virtual void NewQuery() {}
    // Takes the query off the list and hands it over.
    std::unique_ptr<TVQueryItem> DeleteQuery(int index);
    // Descendants erase the stored query too.
    virtual void EraseQuery(int index) { DeleteQuery(index); }
    void ClearQueries();

    void AddLink(TVQueryBaseLink* link) { links_.Add(*link); }
    void DelLink(TVQueryBaseLink* link) { links_.Remove(*link); }
    void QueryChanged(int index);
    void IndexChanged();
    void ListChanged(TQBOperation operation, int index);
    // The first link that answers fills the list; both ask for content.
    bool NeedContent(TStringList& content);
    bool GiveContent(TStringList& content) { return NeedContent(content); }
    // While set, links are told nothing.
    bool SuppressNotifications = false;

    TNotifyEvent BeforeOpen, AfterOpen, BeforeClose, AfterClose, BeforeScroll, AfterScroll;

protected:
    // Adds the stored queries to the list.
    virtual void ReadQueries() {}

private:
    void Fire(const TNotifyEvent& event) {
        if (event)
            event(*this);
    }

    std::vector<std::unique_ptr<TVQueryItem>> items_;
    TNoticeList<TVQueryBaseLink> links_;
    int itemIndex_ = -1;
    bool active_ = false;
};

} // namespace lumora
