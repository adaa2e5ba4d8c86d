#include "lumora/sqlparse/Vscanner.h"

#include <algorithm>

namespace lumora {

using detail::ClassOf;

std::string_view TToken::Name() const {
    return Kind == tkQuotedIdentifier ? Text.substr(1, Text.size() - 2) : Text;
}

// A token that Next does not read itself, or a comment and the token behind it.
const TToken& TVScanner::NextOther() {
    const char* const start = at_;
    token_.Line = line_;
    if (at_ == end_) {
        token_.Kind = tkEnd;
    } else if ((*at_ == '-' && Peek(1) == '-') || (*at_ == '/' && Peek(1) == '*')) {
        if (SkipComment())
            return Next();
        token_.Kind = tkUnclosed;
    } else if (*at_ == '\'' || *at_ == '"') {
        token_.Kind = ScanQuoted();
    } else {
        const char c = *at_;
        const char next = Peek(1);
        const bool pair = (c == '<' && (next == '>' || next == '=')) || (c == '>' && next == '=') ||
                          (c == '!' && next == '=') || (c == '|' && next == '|');
        at_ += pair ? 2 : 1;
        token_.Kind = tkSymbol;
    }
    token_.Text = {start, static_cast<std::size_t>(at_ - start)};
    return token_;
}

void TVScanner::TakeQuotedName() {
    if (!token_.IsSymbol('`') && !token_.IsSymbol('['))
        return;
    const char* const close = std::find(at_, end_, token_.IsSymbol('[') ? ']' : '`');
    if (close == end_)
        return;
    line_ += static_cast<int>(std::count(at_, close, '\n'));
    at_ = close + 1;
    token_.Kind = tkQuotedIdentifier;
    token_.Text = {token_.Text.data(), static_cast<std::size_t>(at_ - token_.Text.data())};
}

// False when the comment is not closed.
bool TVScanner::SkipComment() {
    if (*at_ == '-') {
        at_ = std::find(at_, end_, '\n');
        return true;
    }
    const char* const start = at_;
    const std::string_view rest(at_, static_cast<std::size_t>(end_ - at_));
    const std::size_t close = rest.find("*/", 2);
    at_ = close == std::string_view::npos ? end_ : at_ + close + 2;
    line_ += static_cast<int>(std::count(start, at_, '\n'));
    return close != std::string_view::npos;
}

TTokenKind TVScanner::ScanQuoted() {
    const char quote = *at_;
    for (++at_;; ++at_) {
        while (at_ != end_ && *at_ != quote)
            line_ += *at_++ == '\n';
        if (at_ == end_)
            return tkUnclosed;
        ++at_;
        if (at_ == end_ || *at_ != quote)
            return quote == '\'' ? tkString : tkQuotedIdentifier;
    }
}

// The end of a number's fraction and exponent, which may follow its whole part.
const char* TVScanner::EndOfFraction(const char* at) const {
    const auto isDigit = [this](const char* digit) {
        return digit < end_ && ClassOf(*digit) == detail::ccDigit;
    };
    if (*at == '.' && isDigit(at + 1))
        at = detail::EndOfRun(at + 1, end_, detail::ccDigit);
    if (at == end_ || (*at != 'e' && *at != 'E'))
        return at;
    const bool isSigned = end_ - at > 1 && (at[1] == '+' || at[1] == '-');
    const char* const exponent = at + (isSigned ? 2 : 1);
    return isDigit(exponent) ? detail::EndOfRun(exponent, end_, detail::ccDigit) : at;
}

} // namespace lumora
