#include "lumora/querybase/folder_base.h"

#include "lumora/platform/properties.h"
#include "lumora/platform/text_file.h"
#include "lumora/querybase/folder_lock.h"
#include "lumora/querybase/query_file_name.h"
#include "lumora/querybase/stored_text.h"

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace lumora {

namespace fs = std::filesystem;

namespace {

// A query of ten thousand rows has two megabytes. What is larger by far is no query.
constexpr std::uintmax_t MaxFileSize = std::uintmax_t{64} << 20;

bool Exists(const std::string& path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

// Whether two names lead to one file, as names that differ in letter case may.
bool IsSameFile(const std::string& path, const std::string& other) {
    std::error_code error;
    return fs::equivalent(path, other, error);
}

std::string ReadQueryFile(const std::string& path) {
    std::error_code error;
    if (const std::uintmax_t size = fs::file_size(path, error); !error && size > MaxFileSize)
        throw EFileError("Cannot read file \"" + path + "\": it is too large for a query");
    return ReadTextFile(path);
}

// Length and FNV-1a hash. Times of files are too coarse to tell every change.
std::string StampOf(std::string_view text) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return std::to_string(text.size()) + '-' + std::to_string(hash);
}

} // namespace

std::span<const TPropertyInfo> TVFolderQueryBase::PublishedProperties() const {
    static const std::vector<TPropertyInfo> properties = ExtendProperties(
        TVStoredQueryBase::PublishedProperties(),
        {Property("Folder", &TVFolderQueryBase::GetFolder, &TVFolderQueryBase::SetFolder, "")});
    return properties;
}

void TVFolderQueryBase::SetFolder(const std::string& folder) {
    if (folder == folder_)
        return;
    if (GetActive())
        Close();
    folder_ = folder;
}

std::string TVFolderQueryBase::PathOf(const TStoredQuery& query) const {
    return (fs::path(folder_) / query.Place).string();
}

// --- Reading.

TStoredQuery TVFolderQueryBase::Listed(const std::string& fileName) const {
    TStoredQuery query{.Name = QueryNameOf(fileName), .Place = fileName};
    try {
        const std::string text = ReadQueryFile(PathOf(query));
        query.Description = DescriptionOf(TStringList(text));
        query.Stamp = StampOf(text);
    } catch (const EFileError&) {
        // Whoever wants to load the query is told.
    }
    return query;
}

std::vector<TStoredQuery> TVFolderQueryBase::ListStored() {
    std::vector<TStoredQuery> queries;
    std::error_code error;
    for (fs::directory_iterator entries(folder_, error); !error && entries != fs::directory_iterator();
         entries.increment(error)) {
        std::error_code ignored;
        const std::string fileName = entries->path().filename().string();
        if (IsQueryFileName(fileName) && entries->is_regular_file(ignored))
            queries.push_back(Listed(fileName));
    }
    if (error)
        throw EFileError("Cannot read folder \"" + folder_ + "\": " + error.message());
    return queries;
}

void TVFolderQueryBase::ReadStored(TStoredQuery& query, TStringList& content) {
    if (!Exists(PathOf(query)))
        FailMissing(query.Name);
    const std::string text = ReadQueryFile(PathOf(query));
    content.SetText(text);
    query.Description = DescriptionOf(content);
    query.Stamp = StampOf(text);
}

// --- Writing.

namespace {

// "X.qry.new", "X.qry.new1": what a program that was killed while it wrote a query left beside it.
bool IsLeftover(std::string_view fileName) {
    const std::size_t end = fileName.rfind(".new");
    return end != std::string_view::npos && IsQueryFileName(fileName.substr(0, end)) &&
           fileName.find_first_not_of("0123456789", end + 4) == std::string_view::npos;
}

// Those that somebody may still be writing without the lock stay.
void ClearLeftovers(const std::string& folder, fs::file_time_type now) {
    std::error_code error;
    for (fs::directory_iterator entries(folder, error); !error && entries != fs::directory_iterator();
         entries.increment(error)) {
        std::error_code ignored;
        const fs::directory_entry& entry = *entries;
        const bool isOld = entry.last_write_time(ignored) + std::chrono::minutes(1) < now && !ignored;
        if (IsLeftover(entry.path().filename().string()) && entry.is_regular_file(ignored) && isOld)
            fs::remove(entry.path(), ignored);
    }
}

} // namespace

void TVFolderQueryBase::BeginWriting(const TFolderLock& lock) const {
    if (OnStaleLock && !lock.BrokenOwner().empty())
        OnStaleLock(lock.BrokenOwner());
    ClearLeftovers(folder_, lock.Begin());
}

std::optional<std::string> TVFolderQueryBase::PresentStamp(const TStoredQuery& query) const {
    const std::string path = PathOf(query);
    return Exists(path) ? std::optional(StampOf(ReadQueryFile(path))) : std::nullopt;
}

void TVFolderQueryBase::WriteStored(TStoredQuery& query, const TStoredQuery* old, const TStringList& content,
                                    bool force) {
    query.Place = old && old->Name == query.Name ? old->Place : QueryFileName(query.Name);
    const std::string path = PathOf(query);
    const bool moves = !old || old->Place != query.Place;
    const std::string text = content.GetText();
    const TFolderLock lock(folder_, LockPatience);
    BeginWriting(lock);
    if (old && !force)
        CheckUnchanged(*old, PresentStamp(*old));
    if (moves && !force && Exists(path) && !(old && IsSameFile(PathOf(*old), path)))
        FailExists(query.Name);
    lock.CheckHeld();
    WriteTextFile(path, text);
    query.Stamp = StampOf(text);
    if (old && moves)
        RemoveMoved(*old, query);
}

// Only when someone else changed the old file meanwhile, or nothing can be removed, does it stay; then there
// are two queries, and nothing is lost.
void TVFolderQueryBase::RemoveMoved(const TStoredQuery& old, const TStoredQuery& query) const {
    const std::string oldPath = PathOf(old);
    std::error_code error;
    if (IsSameFile(oldPath, PathOf(query))) {
        fs::rename(oldPath, PathOf(query), error);
        return;
    }
    try {
        if (PresentStamp(old) == old.Stamp)
            fs::remove(oldPath, error);
    } catch (const EFileError&) {
    }
}

void TVFolderQueryBase::EraseStored(const TStoredQuery& query, bool force) {
    const std::string path = PathOf(query);
    const TFolderLock lock(folder_, LockPatience);
    BeginWriting(lock);
    if (!force)
        CheckUnchanged(query, PresentStamp(query));
    lock.CheckHeld();
    std::error_code error;
    fs::remove(path, error);
    if (error)
        throw EFileError("Cannot erase file \"" + path + "\": " + error.message());
}

} // namespace lumora
