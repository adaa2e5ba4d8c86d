#include "lumora/platform/filter_pattern.h"

#include "lumora/platform/ascii.h"

namespace lumora {

namespace {

// The start of the UTF-8 character behind the one at `at`.
std::size_t NextCharacter(std::string_view text, std::size_t at) {
    do
        ++at;
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80);
    return at;
}

} // namespace

TFilterPattern TFilterPattern::OfFilter(std::string_view text, bool caseInsensitive) {
    TFilterPattern pattern;
    pattern.caseInsensitive_ = caseInsensitive;
    for (const char c : text)
        pattern.Add(c == '*' ? elAny : elByte, c);
    return pattern;
}

TFilterPattern TFilterPattern::OfLike(std::string_view text, char escape, bool caseInsensitive) {
    TFilterPattern pattern;
    pattern.caseInsensitive_ = caseInsensitive;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (escape != 0 && text[i] == escape && i + 1 < text.size())
            pattern.Add(elByte, text[++i]);
        else
            pattern.Add(text[i] == '%' ? elAny : text[i] == '_' ? elOne : elByte, text[i]);
    }
    return pattern;
}

void TFilterPattern::Add(TElement element, char byte) {
    if (element == elAny && !elements_.empty() && elements_.back() == elAny)
        return;
    elements_.push_back(element);
    bytes_ += caseInsensitive_ ? LowerAscii(byte) : byte;
}

bool TFilterPattern::MatchesAt(std::size_t element, char c) const {
    return elements_[element] == elOne ||
           (elements_[element] == elByte && bytes_[element] == (caseInsensitive_ ? LowerAscii(c) : c));
}

// What follows the last wildcard that was met is tried at one place after the other; the wildcards before it
// need never be looked at again.
bool TFilterPattern::Matches(std::string_view text) const {
    constexpr auto none = static_cast<std::size_t>(-1);
    std::size_t element = 0;
    std::size_t at = 0;
    std::size_t afterAny = none; // the element behind the last wildcard met
    std::size_t taken = 0;       // where the text that it stands for ends
    while (at < text.size()) {
        if (element < elements_.size() && elements_[element] == elAny) {
            afterAny = ++element;
            taken = at;
            if (element == elements_.size())
                return true;
        } else if (element < elements_.size() && MatchesAt(element, text[at])) {
            at = elements_[element] == elOne ? NextCharacter(text, at) : at + 1;
            ++element;
        } else if (afterAny != none) {
            taken = NextCharacter(text, taken);
            at = taken;
            element = afterAny;
        } else {
            return false;
        }
    }
    while (element < elements_.size() && elements_[element] == elAny)
        ++element;
    return element == elements_.size();
}

} // namespace lumora
