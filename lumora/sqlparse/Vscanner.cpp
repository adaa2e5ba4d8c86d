#include "lumora/sqlparse/Vscanner.h"

#include <algorithm>

namespace lumora {

using detail::ClassOf;

std::string_view TToken::Name() const {
    return Kind == tkQuotedIdentifier ? Text.substr(1, Text.size() - 2) : Text;
}

// A token that is no plain name, or a comment and the token behind it.
const TToken& TVScanner::NextOther() {
    const char* const start = at_;
    token_.Line = line_;
    if (at_ == end_) {
        token_.Kind = tkEnd;
    } else if ((*at_ == '-' && Peek(1) == '-') || (*at_ == '/' && Peek(1) == '*')) {
        if (SkipComment())
            return Next();
        token_.Kind = tkUnclosed;
    } else if (ClassOf(*at_) == detail::ccDigit) {
        ScanNumber();
        token_.Kind = tkNumber;
    } else if (ClassOf(*at_) == detail::ccQuote) {
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

void TVScanner::ScanNumber() {
    const auto digits = [this] {
        while (at_ != end_ && ClassOf(*at_) == detail::ccDigit)
            ++at_;
    };
    digits();
    if (Peek(0) == '.' && ClassOf(Peek(1)) == detail::ccDigit) {
        ++at_;
        digits();
    }
    if (Peek(0) == 'e' || Peek(0) == 'E') {
        const std::ptrdiff_t sign = Peek(1) == '+' || Peek(1) == '-' ? 1 : 0;
        if (ClassOf(Peek(1 + sign)) == detail::ccDigit) {
            at_ += 1 + sign;
            digits();
        }
    }
}

} // namespace lumora
