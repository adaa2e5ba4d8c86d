// A lock on a folder, for programs that write to it together.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

namespace lumora {

// Holds the folder while it lives. The lock is a folder in it that only one program can make. A lock that
// stays the same for as long as `patience` was left behind by a program that ended, and is broken; clocks
// need not agree.
class TFolderLock {
public:
    // EFileError when the folder cannot be written, or others keep it locked.
    TFolderLock(const std::string& folder, std::chrono::milliseconds patience);
    ~TFolderLock();
    TFolderLock(const TFolderLock&) = delete;
    TFolderLock& operator=(const TFolderLock&) = delete;

    // EFileError when someone took this program for one that ended, and broke the lock. To be asked just
    // before something is replaced.
    void CheckHeld() const;
    // Whose lock was broken to make this one: "ann on office-pc, process 4711, since ..."; empty when none
    // was.
    const std::string& BrokenOwner() const { return brokenOwner_; }
    // When it was made, by the clock of the folder's files.
    std::filesystem::file_time_type Begin() const;

private:
    bool TryToLock();
    void Wait(std::chrono::milliseconds patience);
    void Break(const std::string& holder);

    const std::string folder_;
    const std::filesystem::path lock_;
    const std::string mark_; // the name of a file in the lock, which holds whose it is
    std::string brokenOwner_;
};

} // namespace lumora
