// Query bases over a storage that others reach too. What someone else changed is never overwritten unless the
// program says so.
#pragma once

#include "lumora/querybase/Vqrybase.h"

#include <optional>
#include <string>
#include <vector>

namespace lumora {

class TVStoredQueryBase;

// A query as its storage has it.
struct TStoredQuery {
    std::string Name;
    std::string Description{};
    std::string Place{}; // where in the storage it is, when the name does not tell
    std::string Stamp{}; // differs whenever the stored query does; empty when it could not be read
};

// A query of a TVStoredQueryBase. Failures are EVQueryBaseError, with qbeConflict when what is stored is not
// what was read or saved last, and whatever the storage raises. They leave the storage as it was.
class TVStoredQueryItem : public TVQueryItem {
public:
    // A query that was never saved has no text. To read is to have seen what others changed.
    void LoadContent(TStringList& content) override;
    // Under another name than before, the query moves there.
    void SaveContent(const TStringList& content) override { Store(content, false); }
    // Whatever is stored. A query that moves leaves its old one behind when that was changed.
    void ForceSaveContent(const TStringList& content) { Store(content, true); }
    // Stores the text of the panels; qbeNoText when none has any.
    void Save() override { SavePanels(false); }
    void ForceSave() { SavePanels(true); }
    // What a panel shows instead is not saved over this query, unless by force.
    void ContentRefused() override;

    bool IsStored() const { return stored_.has_value(); }

private:
    friend class TVStoredQueryBase;

    TVStoredQueryBase& Storage() const;
    void Store(const TStringList& content, bool force);
    void SavePanels(bool force);

    std::optional<TStoredQuery> stored_; // as it was read or saved last
};

class TVStoredQueryBase : public TVQueryBase {
public:
    using TVQueryBase::TVQueryBase;

    std::string_view ClassName() const override { return "TVStoredQueryBase"; }

    // Adds an empty query with a name that is free, "Query 1", and makes it the current one. It is stored
    // when it is first saved.
    void NewQuery() override;
    // Erases the stored query and takes it off the list; qbeConflict when someone else changed it. The query
    // behind becomes current, and its panels load it.
    void EraseQuery(int index) override { Erase(index, false); }
    void ForceEraseQuery(int index) { Erase(index, true); }
    // Stores a text under a name that is free, and adds its query; returns the index. qbeConflict otherwise.
    int AddQuery(const std::string& name, const TStringList& content);
    // The same with the text of the panels; the new query becomes current.
    int SaveAs(const std::string& name);

protected:
    void ReadQueries() override;

    // The stored queries, in any order.
    virtual std::vector<TStoredQuery> ListStored() = 0;
    // Reads the text, and with it the query's description and stamp.
    virtual void ReadStored(TStoredQuery& query, TStringList& content) = 0;
    // Stores a text as `query`, whose place and stamp it sets, where `old` was (null: nowhere yet).
    virtual void WriteStored(TStoredQuery& query, const TStoredQuery* old, const TStringList& content,
                             bool force) = 0;
    virtual void EraseStored(const TStoredQuery& query, bool force) = 0;

    // For storages: the conflicts. `stamp` is that of what is stored now, none when nothing is.
    [[noreturn]] static void FailChanged(const TStoredQuery& known, const std::optional<std::string>& stamp);
    static void CheckUnchanged(const TStoredQuery& known, const std::optional<std::string>& stamp);
    [[noreturn]] static void FailExists(const std::string& name);
    [[noreturn]] static void FailMissing(const std::string& name);

private:
    friend class TVStoredQueryItem;

    void CheckName(const std::string& name, const TVStoredQueryItem* item, bool force) const;
    std::string FreeName() const;
    void MakeCurrent(int index);
    void Erase(int index, bool force);
    void TakeOff(int index);
    void DropOthersAt(const TVStoredQueryItem& item);
};

} // namespace lumora
