#include "lumora/platform/ascii.h"

#include <cstdint>

namespace lumora {

std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        c = LowerAscii(c);
    return lower;
}

std::size_t FindNoCase(std::string_view text, std::string_view part, std::size_t from) {
    if (part.empty())
        return from <= text.size() ? from : std::string_view::npos;
    for (std::size_t i = from; i + part.size() <= text.size(); ++i)
        if (SameText(text.substr(i, part.size()), part))
            return i;
    return std::string_view::npos;
}

std::string_view Trim(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// FNV-1a over the folded characters.
std::size_t TNoCaseHash::operator()(std::string_view text) const {
    std::uint64_t hash = 14695981039346656037ull;
    for (const char c : text) {
        hash ^= static_cast<unsigned char>(LowerAscii(c));
        hash *= 1099511628211ull;
    }
    return static_cast<std::size_t>(hash);
}

} // namespace lumora
