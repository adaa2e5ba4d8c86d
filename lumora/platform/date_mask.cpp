#include "lumora/platform/date_mask.h"

#include "lumora/platform/ascii.h"

namespace lumora {

namespace {

// The am/pm item at the start of the mask; empty when there is none.
std::string_view AmPmItem(std::string_view mask) {
    if (mask.empty() || LowerAscii(mask.front()) != 'a')
        return {};
    for (const std::string_view item : {"am/pm", "ampm", "a/p"})
        if (SameText(mask.substr(0, item.size()), item))
            return mask.substr(0, item.size());
    return {};
}

// Whether the hour just before this rest of a mask is one of twelve: am/pm comes before another hour does.
bool AmPmFollows(std::string_view rest) {
    char quote = 0;
    for (; !rest.empty(); rest.remove_prefix(1)) {
        const char c = LowerAscii(rest.front());
        if (quote != 0)
            quote = c == quote ? '\0' : quote;
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == 'h')
            return false;
        else if (c == 'a' && !AmPmItem(rest).empty())
            return true;
    }
    return false;
}

} // namespace

std::optional<TMaskItem> TMaskScanner::Next() {
    if (rest_.empty())
        return std::nullopt;
    const char c = LowerAscii(rest_.front());
    if (c == '"' || c == '\'')
        return TakeQuoted();
    if (const std::string_view item = AmPmItem(rest_); !item.empty()) {
        lastLetter_ = 'a';
        return TMaskItem{'a', 1, Take(item.size())};
    }
    if (std::string_view("dmyhnsztc").find(c) != std::string_view::npos)
        return TakeLetters(c);
    if (c >= 'a' && c <= 'z')
        lastLetter_ = c;
    return TMaskItem{c == '/' || c == ':' ? c : '\'', 1, Take(1)};
}

std::string_view TMaskScanner::Take(std::size_t size) {
    const std::string_view taken = rest_.substr(0, size);
    rest_.remove_prefix(taken.size());
    return taken;
}

TMaskItem TMaskScanner::TakeQuoted() {
    const char quote = rest_.front();
    rest_.remove_prefix(1);
    const std::string_view text = Take(rest_.find(quote));
    if (!rest_.empty())
        rest_.remove_prefix(1);
    return {'\'', 1, text};
}

TMaskItem TMaskScanner::TakeLetters(char letter) {
    std::size_t count = 1;
    while (letter != 'c' && count < rest_.size() && LowerAscii(rest_[count]) == letter)
        ++count;
    TMaskItem item{letter, count, Take(count)};
    if (letter == 'm' && lastLetter_ == 'h')
        item.Kind = 'n';
    item.TwelveHours = letter == 'h' && AmPmFollows(rest_);
    lastLetter_ = item.Kind;
    return item;
}

} // namespace lumora
