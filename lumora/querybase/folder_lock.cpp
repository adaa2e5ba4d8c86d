#include "lumora/querybase/folder_lock.h"

#include "lumora/platform/errors.h"
#include "lumora/platform/text_file.h"
#include "lumora/querybase/lock_owner.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <random>
#include <system_error>
#include <thread>

namespace lumora {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

constexpr std::chrono::milliseconds Pause{10};
// How many times the patience others may keep a folder from us, one after the other.
constexpr int MaxWaits = 4;

std::string NewMark() {
    std::random_device random;
    const auto now = static_cast<unsigned long long>(Clock::now().time_since_epoch().count());
    return std::to_string(random()) + '-' + std::to_string(random()) + '-' + std::to_string(now);
}

// The mark in a lock; empty when it has none, or there is no lock.
std::string HolderOf(const fs::path& lock) {
    std::error_code error;
    fs::directory_iterator entries(lock, error);
    return error || entries == fs::directory_iterator() ? std::string() : entries->path().filename().string();
}

// What the holder wrote of itself.
std::string OwnerOf(const fs::path& lock, const std::string& holder) {
    try {
        const std::string owner = holder.empty() ? holder : ReadTextFile((lock / holder).string());
        return owner.empty() ? "a program that did not say whose it is" : owner;
    } catch (const EFileError&) {
        return "a program that ended meanwhile";
    }
}

} // namespace

TFolderLock::TFolderLock(const std::string& folder, std::chrono::milliseconds patience)
    : folder_(folder), lock_(fs::path(folder) / ".lumora-lock"), mark_(NewMark()) {
    if (!TryToLock())
        Wait(patience);
}

TFolderLock::~TFolderLock() {
    std::error_code error;
    if (fs::remove(lock_ / mark_, error))
        fs::remove(lock_, error);
}

void TFolderLock::CheckHeld() const {
    std::error_code error;
    if (!fs::exists(lock_ / mark_, error))
        throw EFileError("Cannot write to folder \"" + folder_ +
                         "\": another program took it over; try again");
}

fs::file_time_type TFolderLock::Begin() const {
    std::error_code error;
    return fs::last_write_time(lock_ / mark_, error);
}

bool TFolderLock::TryToLock() {
    std::error_code error;
    const bool made = fs::create_directory(lock_, error);
    if (error == std::errc::file_exists) // it went away, or it is no folder
        return false;
    if (error)
        throw EFileError("Cannot write to folder \"" + folder_ + "\": " + error.message());
    if (!made)
        return false;
    errno = 0;
    if (std::ofstream(lock_ / mark_) << ThisLockOwner())
        return true;
    const int reason = errno;
    fs::remove(lock_, error);
    throw EFileError("Cannot write to folder \"" + folder_ + "\": " + std::strerror(reason));
}

void TFolderLock::Wait(std::chrono::milliseconds patience) {
    const Clock::time_point start = Clock::now();
    Clock::time_point seen = start;
    std::string holder = HolderOf(lock_);
    while (!TryToLock()) {
        const Clock::time_point now = Clock::now();
        if (const std::string present = HolderOf(lock_); present != holder) {
            holder = present;
            seen = now;
        } else if (now - seen >= patience) {
            Break(holder);
            seen = now;
        }
        if (now - start >= MaxWaits * patience)
            throw EFileError("Cannot write to folder \"" + folder_ + "\": it is locked by " +
                             OwnerOf(lock_, holder) + " (" + lock_.string() + ")");
        std::this_thread::sleep_for(Pause);
    }
}

// Another program may have broken the lock as well and hold a new one by now; that is put back.
void TFolderLock::Break(const std::string& holder) {
    const fs::path broken = fs::path(folder_) / (".lumora-lock-" + mark_);
    std::error_code error;
    if (!fs::is_directory(lock_, error))
        return;
    fs::rename(lock_, broken, error);
    if (error)
        return;
    if (HolderOf(broken) == holder) {
        brokenOwner_ = OwnerOf(broken, holder);
        fs::remove_all(broken, error);
    } else {
        fs::rename(broken, lock_, error);
    }
}

} // namespace lumora
