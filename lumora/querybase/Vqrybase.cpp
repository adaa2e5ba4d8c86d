#include "lumora/querybase/Vqrybase.h"

#include "lumora/platform/properties.h"

namespace lumora {

// --- Items.

void TVQueryItem::LoadContent(TStringList&) {}
void TVQueryItem::SaveContent(const TStringList&) {}

void TVQueryItem::SetQueryName(const std::string& name) {
    if (name == queryName_)
        return;
    queryName_ = name;
    Changed();
}

void TVQueryItem::SetDescription(const std::string& description) {
    if (description == description_)
        return;
    description_ = description;
    Changed();
}

void TVQueryItem::Changed() {
    const int index = base_ ? base_->IndexByName(queryName_) : -1;
    if (index >= 0)
        base_->QueryChanged(index);
}

TVQueryBase& TVQueryItem::CheckBase() const {
    if (!base_)
        throw EVQueryBaseError(qbeNoQueryBase, Message(msgNoQueryBase), {queryName_});
    return *base_;
}

bool TVQueryItem::TakeContent(TStringList& content) {
    return CheckBase().NeedContent(content);
}
bool TVQueryItem::GiveContent(TStringList& content) {
    return CheckBase().GiveContent(content);
}

void TVQueryItem::Load() {
    TStringList content;
    LoadContent(content);
    GiveContent(content);
}

void TVQueryItem::Save() {
    TStringList content;
    TakeContent(content);
    SaveContent(content);
}

// --- Links.

void TVQueryBaseLink::SetQueryBase(TVQueryBase* base) {
    if (base == base_)
        return;
    if (base_)
        base_->DelLink(this);
    base_ = base;
    if (base_)
        base_->AddLink(this);
}

// --- The base.

TVQueryBase::~TVQueryBase() {
    BeginDestruction();
    while (links_.Count() > 0)
        links_[links_.Count() - 1]->SetQueryBase(nullptr);
}

std::span<const TPropertyInfo> TVQueryBase::PublishedProperties() const {
    static const std::vector<TPropertyInfo> properties = ExtendProperties(
        TComponent::PublishedProperties(),
        {EventProperty("BeforeOpen"), EventProperty("AfterOpen"), EventProperty("BeforeClose"),
         EventProperty("AfterClose"), EventProperty("BeforeScroll"), EventProperty("AfterScroll")});
    return properties;
}

void TVQueryBase::Open() {
    Fire(BeforeOpen);
    active_ = true;
    ReadQueries();
    ListChanged(qboListLoaded, -1);
    if (GetCount() > 0)
        SetItemIndex(0);
    Fire(AfterOpen);
}

void TVQueryBase::Close() {
    Fire(BeforeClose);
    active_ = false;
    itemIndex_ = -1;
    ClearQueries();
    ListChanged(qboListCleared, -1);
    Fire(AfterClose);
}

void TVQueryBase::SetItemIndex(int index) {
    if (index == itemIndex_)
        return;
    Fire(BeforeScroll);
    itemIndex_ = index;
    IndexChanged();
    Fire(AfterScroll);
}

TVQueryItem* TVQueryBase::GetQuery(int index) const {
    return items_[CheckIndex(index, items_.size())].get();
}

TVQueryItem* TVQueryBase::GetCurrentQuery() const {
    return itemIndex_ >= 0 && itemIndex_ < GetCount() ? GetQuery(itemIndex_) : nullptr;
}

int TVQueryBase::IndexByName(std::string_view name) const {
    for (int i = 0; i < GetCount(); ++i)
        if (SameText(GetQuery(i)->GetQueryName(), name))
            return i;
    return -1;
}

int TVQueryBase::AddItem(std::unique_ptr<TVQueryItem> item) {
    item->base_ = this;
    items_.push_back(std::move(item));
    const int index = GetCount() - 1;
    ListChanged(qboItemAdded, index);
    QueryChanged(index);
    return index;
}

std::unique_ptr<TVQueryItem> TVQueryBase::DeleteQuery(int index) {
    GetQuery(index);
    std::unique_ptr<TVQueryItem> item = std::move(items_[static_cast<std::size_t>(index)]);
    items_.erase(items_.begin() + index);
    item->base_ = nullptr;
    ListChanged(qboItemDeleted, index);
    if (index != itemIndex_)
        return item;
    if (index < GetCount() - 1)
        SetItemIndex(index); // the index stays, so the query behind becomes current without a notice
    else if (index > 0)
        SetItemIndex(index - 1);
    return item;
}

void TVQueryBase::ClearQueries() {
    items_.clear();
}

void TVQueryBase::QueryChanged(int index) {
    if (!SuppressNotifications)
        links_.ForEach([&](TVQueryBaseLink& link) { link.QueryChanged(index); });
}

void TVQueryBase::IndexChanged() {
    if (!SuppressNotifications)
        links_.ForEach([](TVQueryBaseLink& link) { link.QueryIndexChanged(); });
}

void TVQueryBase::ListChanged(TQBOperation operation, int index) {
    if (!SuppressNotifications)
        links_.ForEach([&](TVQueryBaseLink& link) { link.QueryListChanged(operation, index); });
}

bool TVQueryBase::NeedContent(TStringList& content) {
    bool answered = false;
    links_.ForEach([&](TVQueryBaseLink& link) { answered = answered || link.GetQueryContent(content); });
    return answered;
}

} // namespace lumora
