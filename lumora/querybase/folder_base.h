// A query base that keeps each query in a file of a folder.
#pragma once

#include "lumora/querybase/stored_base.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TFolderLock;

// The queries are the files "*.qry"; their names are those of the files (see query_file_name.h). A file that
// is no query text, or that cannot be read, is listed too. Files are written whole, or not at all. EFileError
// names a file or a folder that cannot be read or written.
class TVFolderQueryBase : public TVStoredQueryBase {
public:
    using TVStoredQueryBase::TVStoredQueryBase;

    std::string_view ClassName() const override { return "TVFolderQueryBase"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    const std::string& GetFolder() const { return folder_; }
    // Closes the base when that is another folder.
    void SetFolder(const std::string& folder);

    // How long to wait for a program that has the folder locked, before it is taken for dead.
    std::chrono::milliseconds LockPatience{5000};
    // Told whose lock was broken, in a line, when a program had left one behind.
    std::function<void(const std::string& owner)> OnStaleLock;

protected:
    std::vector<TStoredQuery> ListStored() override;
    void ReadStored(TStoredQuery& query, TStringList& content) override;
    void WriteStored(TStoredQuery& query, const TStoredQuery* old, const TStringList& content,
                     bool force) override;
    void EraseStored(const TStoredQuery& query, bool force) override;

private:
    std::string PathOf(const TStoredQuery& query) const;
    void BeginWriting(const TFolderLock& lock) const;
    TStoredQuery Listed(const std::string& fileName) const;
    std::optional<std::string> PresentStamp(const TStoredQuery& query) const;
    void RemoveMoved(const TStoredQuery& old, const TStoredQuery& query) const;

    std::string folder_;
};

} // namespace lumora
