#include "lumora/model/sql_pattern.h"

#include "lumora/platform/ascii.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

constexpr std::size_t MaxElements = 512; // each is a step of recursion

// The number of the value whose placeholder begins the text; 0 when none does.
int ValueAt(std::string_view text, std::size_t& length) {
    length = 1;
    int value = 0;
    while (text.size() > length && IsDigit(text[length]) && length < 3)
        value = value * 10 + (text[length++] - '0');
    return !text.empty() && text[0] == '@' ? value : 0;
}

} // namespace

TSQLPattern::TSQLPattern() = default;
TSQLPattern::TSQLPattern(TSQLPattern&& other) noexcept = default;
TSQLPattern& TSQLPattern::operator=(TSQLPattern&& other) noexcept = default;
TSQLPattern::~TSQLPattern() = default;

void TSQLPattern::AddLiteral(std::string_view text) {
    if (elements_.empty() || elements_.back().Kind != elLiteral)
        elements_.emplace_back();
    AppendFoldedBlanks(elements_.back().Text, text);
}

TSQLPattern::TSQLPattern(std::string_view text) {
    std::size_t length = 0;
    while (!text.empty()) {
        const std::size_t close = text[0] == '\'' ? text.find('\'', 1) : std::string_view::npos;
        if (close != std::string_view::npos) {
            const std::string_view inner = text.substr(1, close - 1);
            const std::size_t at = inner.find('@');
            const int value = at == std::string_view::npos ? 0 : ValueAt(inner.substr(at), length);
            if (value > 0)
                elements_.push_back({elValue,
                                     value,
                                     true,
                                     {},
                                     std::string(inner.substr(0, at)),
                                     std::string(inner.substr(at + length)),
                                     '\0'});
            else
                AddLiteral(text.substr(0, close + 1));
            text.remove_prefix(close + 1);
        } else if (text.substr(0, 2) == "@f") {
            elements_.push_back({elField, 0, false, {}, {}, {}, '\0'});
            text.remove_prefix(2);
        } else if (const int value = ValueAt(text, length)) {
            elements_.push_back({elValue, value, false, {}, {}, {}, '\0'});
            text.remove_prefix(length);
        } else {
            AddLiteral(text.substr(0, 1));
            text.remove_prefix(1);
        }
    }
    std::erase_if(elements_, [](const TElement& e) { return e.Kind == elLiteral && e.Text.empty(); });
    FindEscapes();
    bool behindField = false;
    for (const TElement& element : elements_) {
        if (element.Kind == elField)
            behindField = true;
        else if (element.Kind == elLiteral)
            (behindField ? tail_ : head_) = element.Text;
        if (element.Kind == elValue || (behindField && !tail_.empty()))
            break;
    }
}

// A clause may stand behind functions around the value.
void TSQLPattern::FindEscapes() {
    constexpr std::string_view clause = "escape'";
    for (std::size_t i = 0; i + 1 < elements_.size(); ++i) {
        std::string_view behind = elements_[i + 1].Text;
        behind.remove_prefix(std::min(behind.find_first_not_of(')'), behind.size()));
        if (behind.starts_with(clause) && behind.size() > clause.size())
            elements_[i].Escape = behind[clause.size()];
    }
}

namespace {

// Whether the last character of a pattern is meant as it stands.
bool IsLastEscaped(std::string_view pattern, char escape) {
    std::size_t count = 0;
    while (count + 1 < pattern.size() && pattern[pattern.size() - 2 - count] == escape)
        ++count;
    return escape != '\0' && count % 2 != 0;
}

} // namespace

class TSQLPattern::TMatcher {
public:
    TMatcher(const std::vector<TElement>& elements, std::string_view text, std::vector<TCapture>& captures)
        : elements_(elements), text_(text), captures_(captures) {}

    std::size_t FieldStart = std::string_view::npos; // npos: wherever the field is found
    std::size_t FieldLength = 0;
    std::string_view Field; // as it was found

    bool Match(std::size_t element, std::size_t at) {
        if (++steps_ > MaxSteps)
            return false;
        SkipBlanks(at);
        if (element == elements_.size())
            return at == text_.size();
        const TElement& expected = elements_[element];
        if (expected.Kind == elLiteral)
            return MatchLiteral(expected.Text, at) && Match(element + 1, at);
        if (expected.Kind == elField && FieldStart != std::string_view::npos)
            return at == FieldStart && Match(element + 1, at + FieldLength);
        if (expected.Quoted && at < text_.size() && text_[at] == '\'')
            return MatchQuoted(element, at);
        return MatchUnquoted(element, at);
    }

private:
    void SkipBlanks(std::size_t& at) const {
        while (at < text_.size() && IsBlank(text_[at]))
            ++at;
    }

    bool MatchLiteral(std::string_view literal, std::size_t& at) const {
        for (const char c : literal) {
            SkipBlanks(at);
            if (at == text_.size() || LowerAscii(text_[at]) != c)
                return false;
            ++at;
        }
        return true;
    }

    // Behind the closing quote of the literal that begins here.
    std::size_t EndOfQuoted(std::size_t at) const {
        for (++at; at < text_.size(); ++at) {
            if (text_[at] != '\'')
                continue;
            if (at + 1 == text_.size() || text_[at + 1] != '\'')
                return at + 1;
            ++at;
        }
        return at;
    }

    // A "%" of the template is the pattern's own, so the value has none at that end.
    bool MatchQuoted(std::size_t element, std::size_t at) {
        const TElement& expected = elements_[element];
        const std::size_t end = EndOfQuoted(at);
        std::string_view inner = text_.substr(at + 1, end - at - 2);
        if (!inner.starts_with(expected.Before) || !inner.ends_with(expected.After) ||
            inner.size() < expected.Before.size() + expected.After.size())
            return false;
        inner = inner.substr(expected.Before.size(),
                             inner.size() - expected.Before.size() - expected.After.size());
        const bool wildcards =
            expected.Before.find('%') != std::string::npos || expected.After.find('%') != std::string::npos;
        if (wildcards &&
            (inner.starts_with('%') || (inner.ends_with('%') && !IsLastEscaped(inner, expected.Escape))))
            return false;
        const bool doubled = inner.find('\'') != std::string_view::npos;
        return Capture(expected.Value, doubled ? ReplaceText(inner, "''", "'") : std::string(inner), true) &&
               Match(element + 1, end);
    }

    // The value ends where, outside parentheses and quotes, the rest of the pattern matches the rest of the
    // text.
    bool MatchUnquoted(std::size_t element, std::size_t at) {
        if (at < text_.size() && std::string_view("=<>!").find(text_[at]) != std::string_view::npos)
            return false;
        int depth = 0;
        for (std::size_t end = at; end <= text_.size(); ++end) {
            if (depth == 0 && end > at && TryEnd(element, at, end))
                return true;
            if (end == text_.size())
                break;
            const char c = text_[end];
            if (c == '\'')
                end = EndOfQuoted(end) - 1;
            else if (c == '(')
                ++depth;
            else if (c == ')' && --depth < 0)
                break;
        }
        return false;
    }

    bool TryEnd(std::size_t element, std::size_t at, std::size_t end) {
        const bool last = element + 1 == elements_.size();
        if (last ? end != text_.size() : !BeginsNext(elements_[element + 1], end))
            return false;
        const std::string_view found = Trim(text_.substr(at, end - at));
        if (elements_[element].Kind == elField) {
            const std::string_view before = Field;
            if (!before.empty() && before != found)
                return false;
            Field = found;
            if (Match(element + 1, end))
                return true;
            Field = before; // it may end further on
            return false;
        }
        return Match(element + 1, end) && Capture(elements_[element].Value, found, false);
    }

    bool BeginsNext(const TElement& next, std::size_t at) const {
        SkipBlanks(at);
        return next.Kind != elLiteral || (at < text_.size() && LowerAscii(text_[at]) == next.Text[0]);
    }

    bool Capture(int value, std::string_view text, bool quoted) {
        const auto index = static_cast<std::size_t>(value - 1);
        if (captures_.size() <= index)
            captures_.resize(index + 1);
        TCapture& capture = captures_[index];
        if (capture.Found && capture.Text != text)
            return false;
        capture = {std::string(text), quoted, true};
        return true;
    }

    // Patterns of strangers may be made to be tried in endless ways; nobody's operator takes so many steps.
    static constexpr int MaxSteps = 20'000;

    const std::vector<TElement>& elements_;
    std::string_view text_;
    std::vector<TCapture>& captures_;
    int steps_ = 0;
};

bool TSQLPattern::Match(std::string_view text, std::size_t fieldStart, std::size_t fieldLength,
                        std::vector<TCapture>& captures) const {
    captures.clear();
    if (elements_.size() > MaxElements)
        return false;
    TMatcher matcher(elements_, text, captures);
    matcher.FieldStart = fieldStart;
    matcher.FieldLength = fieldLength;
    return matcher.Match(0, 0);
}

bool TSQLPattern::Match(std::string_view text, std::string_view& field,
                        std::vector<TCapture>& captures) const {
    captures.clear();
    TMatcher matcher(elements_, text, captures);
    const bool matches = elements_.size() <= MaxElements && matcher.Match(0, 0);
    field = matcher.Field;
    return matches;
}

bool TSQLPattern::Match(std::string_view text, std::vector<TCapture>& captures) const {
    std::string_view field;
    return Match(text, field, captures) && field.empty();
}

} // namespace lumora
