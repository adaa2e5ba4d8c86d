#include "lumora/querybase/stored_base.h"

#include "lumora/querybase/stored_text.h"

#include <algorithm>

namespace lumora {

// --- Items.

TVStoredQueryBase& TVStoredQueryItem::Storage() const {
    if (auto* const base = dynamic_cast<TVStoredQueryBase*>(GetQueryBase()))
        return *base;
    throw EVQueryBaseError(qbeNoQueryBase, Message(msgNoQueryBase), {GetQueryName()});
}

void TVStoredQueryItem::LoadContent(TStringList& content) {
    TVStoredQueryBase& base = Storage();
    content.Clear();
    if (!stored_)
        return;
    TStoredQuery query = *stored_;
    ContentRefused(); // until it is read
    base.ReadStored(query, content);
    stored_ = query;
    SetDescription(query.Description);
}

void TVStoredQueryItem::ContentRefused() {
    if (stored_)
        stored_->Stamp.clear();
}

void TVStoredQueryItem::Store(const TStringList& content, bool force) {
    TVStoredQueryBase& base = Storage();
    base.CheckName(GetQueryName(), this, force);
    TStoredQuery query{GetQueryName(), DescriptionOf(content)};
    base.WriteStored(query, stored_ ? &*stored_ : nullptr, content, force);
    stored_ = query;
    base.DropOthersAt(*this);
    SetDescription(query.Description);
}

void TVStoredQueryItem::SavePanels(bool force) {
    TStringList content;
    if (!TakeContent(content))
        throw EVQueryBaseError(qbeNoText, Message(msgNoQueryText), {GetQueryName()});
    PutQueryName(content, GetQueryName());
    const std::string description = GetDescription();
    Store(content, force);
    if (GetDescription() != description)
        TakeContent(content); // a panel that is told of a new description counts as changed until it is saved
}

// --- The list.

void TVStoredQueryBase::ReadQueries() {
    std::vector<TStoredQuery> queries = ListStored();
    std::vector<std::pair<std::string, std::size_t>> order; // by name, then as the names are written
    for (std::size_t i = 0; i < queries.size(); ++i)
        order.emplace_back(LowerAscii(queries[i].Name) + '\0' + queries[i].Name, i);
    std::sort(order.begin(), order.end());
    ClearQueries();
    const bool suppressed = SuppressNotifications;
    SuppressNotifications = true; // the list as a whole is told of
    for (const auto& [key, i] : order) {
        auto item = std::make_unique<TVStoredQueryItem>();
        item->SetQueryName(queries[i].Name);
        item->SetDescription(queries[i].Description);
        item->stored_ = std::move(queries[i]);
        AddItem(std::move(item));
    }
    SuppressNotifications = suppressed;
}

void TVStoredQueryBase::MakeCurrent(int index) {
    if (index == GetItemIndex())
        IndexChanged(); // another query has the index now
    else
        SetItemIndex(index);
}

std::string TVStoredQueryBase::FreeName() const {
    for (int i = 1;; ++i) {
        std::string name = FormatText(Message(msgNewQueryName), {std::to_string(i)});
        if (IndexByName(name) < 0)
            return name;
    }
}

void TVStoredQueryBase::NewQuery() {
    auto item = std::make_unique<TVStoredQueryItem>();
    item->SetQueryName(FreeName());
    MakeCurrent(AddItem(std::move(item)));
}

int TVStoredQueryBase::AddQuery(const std::string& name, const TStringList& content) {
    CheckName(name, nullptr, false);
    auto item = std::make_unique<TVStoredQueryItem>();
    TStoredQuery query{name, DescriptionOf(content)};
    WriteStored(query, nullptr, content, false);
    item->SetQueryName(query.Name);
    item->SetDescription(query.Description);
    item->stored_ = std::move(query);
    return AddItem(std::move(item));
}

int TVStoredQueryBase::SaveAs(const std::string& name) {
    TStringList content;
    if (!NeedContent(content))
        throw EVQueryBaseError(qbeNoText, Message(msgNoQueryText), {name});
    PutQueryName(content, name);
    const int index = AddQuery(name, content);
    MakeCurrent(index);
    return index;
}

void TVStoredQueryBase::Erase(int index, bool force) {
    const auto* const item = dynamic_cast<const TVStoredQueryItem*>(GetQuery(index));
    if (item && item->stored_)
        EraseStored(*item->stored_, force);
    TakeOff(index);
}

void TVStoredQueryBase::TakeOff(int index) {
    const int current = GetItemIndex();
    DeleteQuery(index);
    // A panel that shows one query while another one is current would save it over that one.
    if (index == current && GetItemIndex() == current && GetCurrentQuery()) {
        IndexChanged();
    } else if (index < current) {
        const bool suppressed = SuppressNotifications;
        SuppressNotifications = true; // the same query is current, with what was changed in its panel
        SetItemIndex(current - 1);
        SuppressNotifications = suppressed;
    }
}

// --- Names and conflicts.

// A query that keeps its name may share it with another one: files do when they differ in letter case.
void TVStoredQueryBase::CheckName(const std::string& name, const TVStoredQueryItem* item, bool force) const {
    if (Trim(name).empty())
        throw EVQueryBaseError(qbeBadName, Message(msgNoQueryName));
    if (force || (item && item->stored_ && item->stored_->Name == name))
        return;
    for (int i = 0; i < GetCount(); ++i)
        if (GetQuery(i) != item && SameText(GetQuery(i)->GetQueryName(), name))
            FailExists(name);
}

// What was stored by force over another query of the list has taken its place.
void TVStoredQueryBase::DropOthersAt(const TVStoredQueryItem& item) {
    for (int i = GetCount() - 1; i >= 0; --i) {
        const auto* const other = dynamic_cast<const TVStoredQueryItem*>(GetQuery(i));
        if (other && other != &item && other->stored_ && other->stored_->Name == item.stored_->Name &&
            other->stored_->Place == item.stored_->Place)
            TakeOff(i);
    }
}

void TVStoredQueryBase::FailChanged(const TStoredQuery& known, const std::optional<std::string>& stamp) {
    const TMessageId message = !stamp                ? msgQueryDeleted
                               : known.Stamp.empty() ? msgQueryNotRead
                                                     : msgQueryChanged;
    throw EVQueryBaseError(qbeConflict, Message(message), {known.Name});
}

void TVStoredQueryBase::CheckUnchanged(const TStoredQuery& known, const std::optional<std::string>& stamp) {
    if (known.Stamp.empty() || stamp != known.Stamp)
        FailChanged(known, stamp);
}

void TVStoredQueryBase::FailExists(const std::string& name) {
    throw EVQueryBaseError(qbeConflict, Message(msgQueryExists), {name});
}

void TVStoredQueryBase::FailMissing(const std::string& name) {
    throw EVQueryBaseError(qbeNoSuchQuery, Message(msgNoSuchQuery), {name});
}

} // namespace lumora
