// The tokens of a form text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace lumora {

// EReadError "Line N: message".
[[noreturn]] void RaiseReadError(std::size_t line, const std::string& message);

enum TFormToken : std::uint8_t { ftkName, ftkInteger, ftkFloat, ftkString, ftkSymbol, ftkEnd };

// Gives the tokens one by one; it stands on the first from the start. The text must outlive it. Whatever
// cannot be a token raises EReadError.
class TFormLexer {
public:
    explicit TFormLexer(std::string_view text);

    TFormToken Token() const { return token_; }
    std::size_t Line() const { return line_; }        // of the current token, from 1
    const std::string& Text() const { return text_; } // a name or symbol as written, a string's content
    std::int64_t Integer() const { return integer_; }
    double Float() const { return float_; }
    bool IsWord(std::string_view word) const; // a name, letter case ignored
    bool IsSymbol(char symbol) const { return token_ == ftkSymbol && text_[0] == symbol; }

    void Next();
    // Steps over the symbol if it stands here, and tells whether it did.
    bool Skip(char symbol);
    // Gives the name that stands here and steps over it; `what` is the error's word for it.
    std::string TakeName(std::string_view what);
    // EReadError that tells what should stand here and what does.
    [[noreturn]] void FailExpected(std::string_view what) const;

private:
    char At(std::size_t i) const { return i < source_.size() ? source_[i] : '\0'; }
    void SkipBlanks();
    void ReadName();
    void ReadNumber();
    void ReadString();
    void ReadQuoted();
    void ReadCharacterCode();

    std::string_view source_;
    std::size_t at_ = 0;
    std::size_t lineHere_ = 1;
    std::size_t line_ = 1;
    TFormToken token_ = ftkEnd;
    std::string text_;
    std::int64_t integer_ = 0;
    double float_ = 0;
};

} // namespace lumora
