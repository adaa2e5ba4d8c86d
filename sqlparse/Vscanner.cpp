#include "sqlparse/Vscanner.h"

#include <algorithm>
#include <array>

namespace lumora {

namespace {

enum TCharClass : std::uint8_t { ccOther, ccBlank, ccName, ccDigit };

constexpr std::array<TCharClass, 256> MakeCharClasses() {
    std::array<TCharClass, 256> classes{};
    for (unsigned c = 0; c < 256; ++c) {
        if (c <= ' ')
            classes[c] = ccBlank;
        else if (c >= '0' && c <= '9')
            classes[c] = ccDigit;
        else if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$' || c == '#' ||
                 c == '@' || c >= 128)
            classes[c] = ccName;
    }
    return classes;
}

constexpr std::array<TCharClass, 256> CharClasses = MakeCharClasses();

TCharClass ClassOf(char c) {
    return CharClasses[static_cast<unsigned char>(c)];
}

} // namespace

std::string_view TToken::Name() const {
    return Kind == tkQuotedIdentifier ? Text.substr(1, Text.size() - 2) : Text;
}

const TToken& TVScanner::Next() {
    const bool closed = SkipBlanks();
    token_.Line = line_;
    const std::size_t start = position_;
    token_.Kind = closed ? ScanToken() : tkUnclosed;
    if (!closed)
        position_ = source_.size();
    token_.Text = source_.substr(start, position_ - start);
    if (token_.Kind == tkString || token_.Kind == tkQuotedIdentifier || token_.Kind == tkUnclosed)
        line_ += static_cast<int>(std::count(token_.Text.begin(), token_.Text.end(), '\n'));
    return token_;
}

// False when a comment is not closed; the position is then where it begins.
bool TVScanner::SkipBlanks() {
    while (position_ < source_.size()) {
        const char c = source_[position_];
        if (ClassOf(c) == ccBlank) {
            line_ += c == '\n';
            ++position_;
        } else if (c == '-' && At(position_ + 1) == '-') {
            position_ = std::min(source_.find('\n', position_), source_.size());
        } else if (c == '/' && At(position_ + 1) == '*') {
            const std::size_t end = source_.find("*/", position_ + 2);
            if (end == std::string_view::npos)
                return false;
            const auto begin = source_.begin();
            line_ += static_cast<int>(std::count(begin + static_cast<std::ptrdiff_t>(position_),
                                                 begin + static_cast<std::ptrdiff_t>(end), '\n'));
            position_ = end + 2;
        } else {
            break;
        }
    }
    return true;
}

TTokenKind TVScanner::ScanToken() {
    if (position_ >= source_.size())
        return tkEnd;
    const char c = source_[position_];
    switch (ClassOf(c)) {
    case ccName:
        do
            ++position_;
        while (position_ < source_.size() && ClassOf(source_[position_]) >= ccName);
        return tkIdentifier;
    case ccDigit:
        ScanNumber();
        return tkNumber;
    default:
        break;
    }
    if (c == '\'')
        return ScanQuoted('\'', tkString);
    if (c == '"')
        return ScanQuoted('"', tkQuotedIdentifier);
    const char next = At(position_ + 1);
    const bool pair = (c == '<' && (next == '>' || next == '=')) || (c == '>' && next == '=') ||
                      (c == '!' && next == '=') || (c == '|' && next == '|');
    position_ += pair ? 2 : 1;
    return tkSymbol;
}

TTokenKind TVScanner::ScanQuoted(char quote, TTokenKind kind) {
    for (++position_;;) {
        position_ = source_.find(quote, position_);
        if (position_ == std::string_view::npos) {
            position_ = source_.size();
            return tkUnclosed;
        }
        ++position_;
        if (At(position_) != quote)
            return kind;
        ++position_;
    }
}

void TVScanner::ScanNumber() {
    const auto digits = [this] {
        while (ClassOf(At(position_)) == ccDigit)
            ++position_;
    };
    digits();
    if (At(position_) == '.' && ClassOf(At(position_ + 1)) == ccDigit) {
        ++position_;
        digits();
    }
    if (At(position_) == 'e' || At(position_) == 'E') {
        const std::size_t sign = At(position_ + 1) == '+' || At(position_ + 1) == '-' ? 1 : 0;
        if (ClassOf(At(position_ + 1 + sign)) == ccDigit) {
            position_ += 1 + sign;
            digits();
        }
    }
}

} // namespace lumora
