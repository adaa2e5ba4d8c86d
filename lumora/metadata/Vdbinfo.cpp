#include "lumora/metadata/Vdbinfo.h"

#include "lumora/platform/properties.h"

namespace lumora {

void TDBFieldList::Add(TDBFieldInfo info) {
    items_.push_back(std::move(info));
}

void TDBFieldList::Clear() {
    items_.clear();
}

TVDBInfo::TVDBInfo(TComponent* owner) : TComponent(owner) {}

TVDBInfo::~TVDBInfo() {
    BeginDestruction();
}

const TDBFieldInfo& TDBFieldList::GetItem(int index) const {
    return items_[CheckIndex(index, items_.size())];
}

const TDBFieldInfo* TDBFieldList::FindByName(std::string_view name) const {
    for (const TDBFieldInfo& info : items_)
        if (SameText(info.Name, name))
            return &info;
    return nullptr;
}

std::span<const TPropertyInfo> TVDBInfo::PublishedProperties() const {
    static const std::vector<TPropertyInfo> properties =
        ExtendProperties(TComponent::PublishedProperties(), {EventProperty("OnLinksRequest")});
    return properties;
}

void TVDBInfo::TablesByDatabase(TStringList&) {}
void TVDBInfo::LinksByDatabase(TStringList&) {}
void TVDBInfo::FieldsByTable(const std::string&, TDBFieldList&) {}
void TVDBInfo::LoadInfo(TStringList& settings) {
    settings.Clear();
}
void TVDBInfo::SaveInfo(TStringList&) {}
void TVDBInfo::GetDatabaseNames(TStringList&) {}
void TVDBInfo::GetSQLValues(std::string_view, TStringList&, TStringList&) {}

const TDBFieldList& TVDBInfo::GetFieldList(const std::string& table) {
    if (table != cachedTable_) {
        cachedTable_ = table;
        fields_.Clear();
        FieldsByTable(table, fields_);
    }
    return fields_;
}

void TVDBInfo::GetFieldNamesByTable(const std::string& table, TStringList& names) {
    names.Clear();
    const TDBFieldList& fields = GetFieldList(table);
    for (int i = 0; i < fields.Count(); ++i)
        names.Add(fields.GetItem(i).Name);
}

void TVDBInfo::GetLinksList(TStringList& links) {
    LinksByDatabase(links);
    DoOnLinksRequest(links);
}

void TVDBInfo::DoOnLinksRequest(TStringList& links) {
    if (OnLinksRequest)
        OnLinksRequest(*this, links);
}

} // namespace lumora
