#include "lumora/platform/form_lexer.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/convert.h"
#include "lumora/platform/errors.h"

namespace lumora {

void RaiseReadError(std::size_t line, const std::string& message) {
    throw EReadError("Line " + std::to_string(line) + ": " + message);
}

namespace {

bool IsNameStart(char c) {
    const char lower = LowerAscii(c);
    return (lower >= 'a' && lower <= 'z') || c == '_';
}

bool IsHexDigit(char c) {
    return IsDigit(c) || (LowerAscii(c) >= 'a' && LowerAscii(c) <= 'f');
}

void AppendUtf8(std::string& text, unsigned code) {
    const auto put = [&text](unsigned byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (code < 0x80)
        return put(code);
    if (code < 0x800) {
        put(0xC0 | code >> 6);
    } else {
        if (code < 0x10000) {
            put(0xE0 | code >> 12);
        } else {
            put(0xF0 | code >> 18);
            put(0x80 | (code >> 12 & 0x3F));
        }
        put(0x80 | (code >> 6 & 0x3F));
    }
    put(0x80 | (code & 0x3F));
}

} // namespace

TFormLexer::TFormLexer(std::string_view text) : source_(text) {
    if (source_.substr(0, 3) == "\xEF\xBB\xBF")
        at_ = 3;
    Next();
}

bool TFormLexer::IsWord(std::string_view word) const {
    return token_ == ftkName && SameText(text_, word);
}

void TFormLexer::Next() {
    SkipBlanks();
    line_ = lineHere_;
    text_.clear();
    if (at_ >= source_.size()) {
        token_ = ftkEnd;
        return;
    }
    const char c = source_[at_];
    if (IsNameStart(c))
        return ReadName();
    if (IsDigit(c) || c == '$' || c == '-')
        return ReadNumber();
    if (c == '\'' || c == '#')
        return ReadString();
    if (std::string_view("=.,:+()[]").find(c) == std::string_view::npos)
        RaiseReadError(line_, "A form text has no place for this character here");
    token_ = ftkSymbol;
    text_ = c;
    ++at_;
}

bool TFormLexer::Skip(char symbol) {
    if (!IsSymbol(symbol))
        return false;
    Next();
    return true;
}

std::string TFormLexer::TakeName(std::string_view what) {
    if (token_ != ftkName)
        FailExpected(what);
    std::string name = std::move(text_);
    Next();
    return name;
}

void TFormLexer::FailExpected(std::string_view what) const {
    std::string found;
    switch (token_) {
    case ftkEnd:
        found = "the text ends";
        break;
    case ftkInteger:
    case ftkFloat:
        found = "a number stands here";
        break;
    case ftkString:
        found = "a string stands here";
        break;
    default:
        found = "\"" + text_.substr(0, 60) + "\" stands here";
    }
    RaiseReadError(line_, "Expected " + std::string(what) + ", but " + found);
}

// Line ends are LF, CRLF or CR.
void TFormLexer::SkipBlanks() {
    for (; at_ < source_.size() && IsBlank(source_[at_]); ++at_)
        if (source_[at_] == '\n' || (source_[at_] == '\r' && At(at_ + 1) != '\n'))
            ++lineHere_;
}

void TFormLexer::ReadName() {
    const std::size_t start = at_;
    while (at_ < source_.size() && (IsNameStart(source_[at_]) || IsDigit(source_[at_])))
        ++at_;
    token_ = ftkName;
    text_ = source_.substr(start, at_ - start);
}

void TFormLexer::ReadNumber() {
    const std::size_t start = at_;
    const auto skipDigits = [this] {
        while (IsDigit(At(at_)))
            ++at_;
    };
    token_ = ftkInteger;
    if (source_[at_] == '-')
        ++at_;
    if (At(at_) == '$') {
        ++at_;
        while (IsHexDigit(At(at_)))
            ++at_;
    } else {
        skipDigits();
        if (At(at_) == '.') {
            token_ = ftkFloat;
            ++at_;
            skipDigits();
        }
        if (LowerAscii(At(at_)) == 'e') {
            token_ = ftkFloat;
            at_ += At(at_ + 1) == '-' || At(at_ + 1) == '+' ? 2 : 1;
            skipDigits();
        }
    }
    const std::string_view number = source_.substr(start, at_ - start);
    const auto integer = token_ == ftkInteger ? TryStrToInt64(number) : std::nullopt;
    const auto real = token_ == ftkFloat ? TryStrToFloat(number) : std::nullopt;
    if ((!integer && !real) || IsNameStart(At(at_)))
        RaiseReadError(line_, "This is not a number, or too large a one");
    integer_ = integer.value_or(0);
    float_ = real.value_or(0);
}

// Quoted pieces and character codes that touch are one string.
void TFormLexer::ReadString() {
    token_ = ftkString;
    for (;;) {
        if (At(at_) == '\'')
            ReadQuoted();
        else if (At(at_) == '#')
            ReadCharacterCode();
        else
            return;
    }
}

void TFormLexer::ReadQuoted() {
    for (++at_;; ++at_) {
        const std::size_t stop = source_.find_first_of("'\n\r", at_);
        if (stop == std::string_view::npos || source_[stop] != '\'')
            RaiseReadError(line_, "A string has no closing quote");
        text_.append(source_, at_, stop - at_);
        at_ = stop + 1;
        if (At(at_) != '\'')
            return;
        text_ += '\'';
    }
}

// Codes beyond ASCII are characters, not bytes.
void TFormLexer::ReadCharacterCode() {
    unsigned code = 0;
    const std::size_t start = ++at_;
    for (; IsDigit(At(at_)) && code < 0x110000; ++at_)
        code = code * 10 + static_cast<unsigned>(source_[at_] - '0');
    if (at_ == start || code >= 0x110000 || (code >= 0xD800 && code < 0xE000))
        RaiseReadError(line_, "\"#\" stands without the code of a character");
    AppendUtf8(text_, code);
}

} // namespace lumora
