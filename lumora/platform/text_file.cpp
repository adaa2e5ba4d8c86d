#include "lumora/platform/text_file.h"

#include "lumora/platform/errors.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace lumora {

namespace fs = std::filesystem;

std::string ReadTextFile(const std::string& fileName) {
    std::error_code error;
    if (fs::is_directory(fileName, error))
        throw EFileError("Cannot read file \"" + fileName + "\": it is a directory");
    errno = 0;
    std::ifstream file(fileName, std::ios::binary);
    if (!file)
        throw EFileError("Cannot open file \"" + fileName + "\": " + std::strerror(errno));
    std::string text;
    char block[65536];
    while (file.read(block, sizeof block) || file.gcount() > 0)
        text.append(block, static_cast<std::size_t>(file.gcount()));
    if (file.bad())
        throw EFileError("Cannot read file \"" + fileName + "\": " + std::strerror(errno));
    return text;
}

namespace {

// A name beside the target that no file bears yet; links are followed, so that a linked file is replaced, not
// the link.
fs::path NewFileBeside(const fs::path& target) {
    for (int i = 0;; ++i) {
        fs::path candidate = target;
        candidate += ".new" + (i == 0 ? std::string() : std::to_string(i));
        std::error_code error;
        if (!fs::exists(fs::symlink_status(candidate, error)))
            return candidate;
    }
}

} // namespace

void WriteTextFile(const std::string& fileName, std::string_view text) {
    std::error_code error;
    fs::path target = fileName;
    if (fs::is_symlink(fs::symlink_status(target, error)))
        target = fs::weakly_canonical(target, error);
    const fs::path fresh = NewFileBeside(target);
    errno = 0;
    bool written = false;
    {
        std::ofstream file(fresh, std::ios::binary);
        file.write(text.data(), static_cast<std::streamsize>(text.size()));
        file.close();
        written = !file.fail();
    }
    const int reason = errno;
    if (!written) {
        fs::remove(fresh, error);
        throw EFileError("Cannot write file \"" + fileName + "\": " + std::strerror(reason));
    }
    if (const fs::file_status old = fs::status(target, error); fs::exists(old))
        fs::permissions(fresh, old.permissions(), error);
    fs::rename(fresh, target, error);
    if (error) {
        const std::string message = error.message();
        fs::remove(fresh, error);
        throw EFileError("Cannot write file \"" + fileName + "\": " + message);
    }
}

} // namespace lumora
