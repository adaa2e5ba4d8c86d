// Whole text files. A file is replaced by moving a new one over it, so a crash leaves the old one or the new
// one.
#pragma once

#include <string>
#include <string_view>

namespace lumora {

// The bytes of a file; EFileError names the file when it cannot be read.
std::string ReadTextFile(const std::string& fileName);
// Replaces the file; EFileError names it when that fails, and the old file stays as it was.
void WriteTextFile(const std::string& fileName, std::string_view text);

} // namespace lumora
