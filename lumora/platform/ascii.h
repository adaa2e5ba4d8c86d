// Comparison without regard to case folds A to Z only, so it means the same in every locale.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lumora {

constexpr char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}
constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
// Blanks and control characters, as the component framework trims them.
constexpr bool IsBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

std::string LowerAscii(std::string_view text);
inline bool SameText(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && LowerAscii(a[i]) != LowerAscii(b[i]))
            return false;
    return true;
}
// Position of `part` in `text` at or after `from`, without regard to case; npos when absent.
std::size_t FindNoCase(std::string_view text, std::string_view part, std::size_t from = 0);
std::string_view Trim(std::string_view text);

// For hash containers keyed by a name without regard to case.
struct TNoCaseHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const;
};
struct TNoCaseEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return SameText(a, b); }
};

} // namespace lumora
