// The abstract source of database metadata for a data model. The base class does no database work; a provider
// over a real database overrides what it needs.
#pragma once

#include "lumora/platform/component.h"
#include "lumora/platform/errors.h"
#include "lumora/platform/field_types.h"
#include "lumora/platform/string_list.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class EVDBInfoError : public Exception { // a provider's own failures
public:
    using Exception::Exception;
};

// One field of one table, as the database reports it.
struct TDBFieldInfo {
    std::string Name;
    int Size = 0;
    TFieldType DataType = ftString;
};

class TDBFieldList {
public:
    int Count() const { return static_cast<int>(items_.size()); }
    const TDBFieldInfo& GetItem(int index) const; // EListError for a bad index
    void Add(TDBFieldInfo info);
    void Clear();
    // The first field of that name, letter case ignored; null when there is none.
    const TDBFieldInfo* FindByName(std::string_view name) const;

private:
    std::vector<TDBFieldInfo> items_;
};

class TVDBInfo : public TComponent {
public:
    // `links` takes link lines, "Orders-Customer:CustNo=CustNo".
    using TLinksRequestEvent = std::function<void(TVDBInfo& sender, TStringList& links)>;

    explicit TVDBInfo(TComponent* owner = nullptr);
    ~TVDBInfo() override;

    std::string_view ClassName() const override { return "TVDBInfo"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    // What a provider overrides; none of these does anything here, but for LoadInfo, which empties the list.
    virtual void TablesByDatabase(TStringList& tables);
    virtual void LinksByDatabase(TStringList& links);
    virtual void FieldsByTable(const std::string& table, TDBFieldList& fields);
    virtual bool GetConnected() const { return true; }
    virtual void LoadInfo(TStringList& settings);
    virtual void SaveInfo(TStringList& settings);
    virtual void GetDatabaseNames(TStringList& names);
    // Runs a query; line i of the lists is the text of row i's first and second column.
    virtual void GetSQLValues(std::string_view sql, TStringList& first, TStringList& second);
    // What ended the last GetSQLValues before its time; empty when nothing did.
    virtual std::string GetLastError() const { return {}; }

    void GetTableNames(TStringList& tables) { TablesByDatabase(tables); }
    // The fields of a table; the list belongs to the provider and holds until the next call. Only a table
    // other than the last one (names compared exactly) is asked of the database.
    const TDBFieldList& GetFieldList(const std::string& table);
    void GetFieldNamesByTable(const std::string& table, TStringList& names);
    // The provider's own links, then whatever OnLinksRequest makes of them.
    void GetLinksList(TStringList& links);
    void DoOnLinksRequest(TStringList& links);
    // Forgets the fields that are kept.
    void Update() { cachedTable_.clear(); }
    void ConnectionChanged() { Update(); }

    TLinksRequestEvent OnLinksRequest;

private:
    TDBFieldList fields_;
    std::string cachedTable_; // empty: nothing is kept
};

} // namespace lumora
