// The text of a filter, read without recursion: operators wait on a stack until what follows binds less.
#include "lumora/platform/ascii.h"
#include "lumora/platform/convert.h"
#include "lumora/platform/filter_expression.h"

#include <unordered_map>
#include <utility>

namespace lumora {

namespace {

using namespace detail;

constexpr std::string_view Words[] = {"and",     "or",   "not",    "is",   "null", "in",
                                      "between", "like", "escape", "true", "false"};

bool IsWord(std::string_view name) {
    for (const std::string_view word : Words)
        if (SameText(word, name))
            return true;
    return false;
}

bool BeginsFilterName(char c) {
    const char lower = LowerAscii(c);
    return (lower >= 'a' && lower <= 'z') || c == '_' || c == '$' || c == '#' ||
           static_cast<unsigned char>(c) >= 128;
}

bool IsNamePart(char c) {
    return BeginsFilterName(c) || IsDigit(c);
}

enum TFilterTokenKind : std::uint8_t { fftEnd, fftName, fftColumn, fftString, fftNumber, fftSymbol };

struct TFilterToken {
    TFilterTokenKind Kind = fftEnd; // fftName: one bare name, which may be a word
    std::string Text;               // of names and strings what they mean, of the rest as written
    std::size_t LastPart = 0;
    std::size_t At = 0;

    bool IsWord(std::string_view word) const { return Kind == fftName && SameText(Text, word); }
    bool IsSymbol(std::string_view symbol) const { return Kind == fftSymbol && Text == symbol; }
};

class TFilterLexer {
public:
    explicit TFilterLexer(std::string_view text) : text_(text) { Next(); }

    const TFilterToken& Token() const { return token_; }
    TFilterToken Take() {
        TFilterToken token = std::move(token_);
        Next();
        return token;
    }
    bool TakeWord(std::string_view word) {
        const bool found = token_.IsWord(word);
        if (found)
            Next();
        return found;
    }
    bool TakeSymbol(std::string_view symbol) {
        const bool found = token_.IsSymbol(symbol);
        if (found)
            Next();
        return found;
    }

    // The number of the character at a byte, from 1. Places are mostly asked for one behind the other.
    int PositionOf(std::size_t at) const {
        if (at < countedTo_) {
            countedTo_ = 0;
            position_ = 1;
        }
        for (; countedTo_ < at; ++countedTo_)
            position_ += (static_cast<unsigned char>(text_[countedTo_]) & 0xC0) != 0x80;
        return position_;
    }
    [[noreturn]] void Fail(const std::string& message, std::size_t at) const {
        throw EFilterError(message, PositionOf(at));
    }
    [[noreturn]] void FailExpected(const std::string& what) const {
        const std::size_t end = token_.Kind == fftEnd ? text_.size() : at_;
        std::string found(text_.substr(token_.At, end - token_.At));
        if (found.size() > 40)
            found = found.substr(0, 40) + "...";
        Fail(what + " is expected" + (found.empty() ? " at the end," : ", not " + found + ","), token_.At);
    }

private:
    char Peek(std::size_t offset = 0) const {
        return at_ + offset < text_.size() ? text_[at_ + offset] : '\0';
    }

    void Next() {
        while (at_ < text_.size() && IsBlank(text_[at_]))
            ++at_;
        token_ = {};
        token_.At = at_;
        if (at_ == text_.size())
            return;
        const char c = text_[at_];
        if (BeginsFilterName(c) || c == '"' || c == '[')
            ScanName();
        else if (c == '\'')
            ScanString();
        else if (IsDigit(c) || (c == '.' && IsDigit(Peek(1))))
            ScanNumber();
        else
            ScanSymbol();
    }

    void ScanName() {
        token_.Kind = fftColumn;
        for (bool isFirst = true;; isFirst = false) {
            token_.LastPart = token_.Text.size();
            if (Peek() == '"' || Peek() == '[') {
                TakeQuoted(Peek() == '[' ? ']' : '"');
            } else {
                const std::size_t start = at_;
                while (IsNamePart(Peek()))
                    ++at_;
                token_.Text += text_.substr(start, at_ - start);
                if (isFirst && Peek() != '.')
                    token_.Kind = fftName;
            }
            if (Peek() != '.' || !(BeginsFilterName(Peek(1)) || Peek(1) == '"' || Peek(1) == '['))
                return;
            token_.Text += '.';
            ++at_;
        }
    }

    void ScanString() {
        token_.Kind = fftString;
        TakeQuoted('\'');
    }

    // What stands between quotes, the closing one doubled inside.
    void TakeQuoted(char close) {
        const std::size_t start = at_++;
        for (;; ++at_) {
            if (at_ >= text_.size())
                Fail(std::string(1, text_[start]) + " is not closed,", start);
            if (text_[at_] == close && Peek(1) != close)
                break;
            at_ += text_[at_] == close ? 1 : 0;
            token_.Text += text_[at_];
        }
        ++at_;
    }

    void ScanNumber() {
        token_.Kind = fftNumber;
        while (IsNamePart(Peek()) || Peek() == '.' ||
               ((Peek() == '-' || Peek() == '+') && LowerAscii(text_[at_ - 1]) == 'e'))
            ++at_;
        token_.Text = text_.substr(token_.At, at_ - token_.At);
        if (!TryStrToFloat(token_.Text))
            Fail("\"" + token_.Text + "\" is not a number,", token_.At);
    }

    void ScanSymbol() {
        static constexpr std::string_view symbols[] = {"<>", "!=", "<=", ">=", "=", "<",
                                                       ">",  "(",  ")",  ",",  "-", "+"};
        token_.Kind = fftSymbol;
        for (const std::string_view symbol : symbols)
            if (text_.substr(at_).starts_with(symbol)) {
                token_.Text = symbol;
                at_ += symbol.size();
                return;
            }
        if (Peek() == ':')
            Fail("A filter has no parameters, but there is one", at_);
        Fail(std::string("\"") + Peek() + "\" does not belong into a filter,", at_);
    }

    std::string_view text_;
    std::size_t at_ = 0;
    TFilterToken token_;
    mutable std::size_t countedTo_ = 0;
    mutable int position_ = 1;
};

class TFilterParser {
public:
    TFilterParser(std::string_view text, const TFilterOptions& options) : lexer_(text), options_(options) {}

    TFilterProgram Parse() {
        if (lexer_.Token().Kind == fftEnd)
            return {};
        for (;;) {
            ParseStart();
            while (lexer_.Token().IsSymbol(")"))
                Close();
            if (lexer_.Token().Kind == fftEnd)
                break;
            ParseJoin();
        }
        Unwind(pnParenthesis);
        if (!pending_.empty())
            lexer_.Fail("( is not closed,", pending_.back().At);
        return std::move(program_);
    }

private:
    // In the order in which they bind.
    enum TPendingKind : std::uint8_t { pnParenthesis, pnOr, pnAnd, pnNot };
    struct TPending {
        TPendingKind Kind;
        std::size_t At;   // of a parenthesis
        std::size_t Skip; // the step that skips the right side
    };

    // Everything up to and with one comparison.
    void ParseStart() {
        for (;;) {
            const std::size_t at = lexer_.Token().At;
            if (lexer_.TakeWord("not")) {
                if (!pending_.empty() && pending_.back().Kind == pnNot)
                    pending_.pop_back();
                else
                    pending_.push_back({pnNot, 0, 0});
            } else if (lexer_.TakeSymbol("(")) {
                if (++depth_ > MaxFilterNesting)
                    lexer_.Fail("The filter nests too deep,", at);
                pending_.push_back({pnParenthesis, at, 0});
            } else {
                program_.Steps.push_back({stpTest, program_.Comparisons.size()});
                program_.Comparisons.push_back(ParseComparison());
                return;
            }
        }
    }

    void ParseJoin() {
        const bool isAnd = lexer_.TakeWord("and");
        if (!isAnd && !lexer_.TakeWord("or"))
            lexer_.FailExpected("\"and\" or \"or\"");
        const TPendingKind kind = isAnd ? pnAnd : pnOr;
        Unwind(kind);
        pending_.push_back({kind, 0, program_.Steps.size()});
        program_.Steps.push_back({isAnd ? stpSkipIfFalse : stpSkipIfTrue});
    }

    void Close() {
        const std::size_t at = lexer_.Token().At;
        Unwind(pnOr);
        if (pending_.empty())
            lexer_.Fail(") has no (,", at);
        pending_.pop_back();
        --depth_;
        lexer_.Take();
    }

    // Writes the steps of the operators that bind at least as close as `kind`.
    void Unwind(TPendingKind kind) {
        while (!pending_.empty() && pending_.back().Kind >= kind && pending_.back().Kind != pnParenthesis) {
            const TPending pending = pending_.back();
            pending_.pop_back();
            if (pending.Kind == pnNot) {
                program_.Steps.push_back({stpNot});
                continue;
            }
            program_.Steps.push_back({pending.Kind == pnAnd ? stpAnd : stpOr});
            program_.Steps[pending.Skip].Index = program_.Steps.size();
        }
    }

    TFilterComparison ParseComparison() {
        TFilterComparison comparison;
        comparison.Left = ParseValue("A condition");
        if (lexer_.TakeWord("is")) {
            comparison.Test = tstIsNull;
            comparison.Negated = lexer_.TakeWord("not");
            if (!lexer_.TakeWord("null"))
                lexer_.FailExpected("\"null\"");
            return comparison;
        }
        comparison.Negated = lexer_.TakeWord("not");
        if (lexer_.TakeWord("in"))
            ParseIn(comparison);
        else if (lexer_.TakeWord("between"))
            ParseBetween(comparison);
        else if (lexer_.TakeWord("like"))
            ParseLike(comparison);
        else if (comparison.Negated)
            lexer_.FailExpected("\"in\", \"between\" or \"like\"");
        else
            ParseOrder(comparison);
        return comparison;
    }

    void ParseIn(TFilterComparison& comparison) {
        comparison.Test = tstIn;
        if (!lexer_.TakeSymbol("("))
            lexer_.FailExpected("\"(\"");
        do
            comparison.Right.push_back(ParseValue("A value"));
        while (lexer_.TakeSymbol(","));
        if (!lexer_.TakeSymbol(")"))
            lexer_.FailExpected("\",\" or \")\"");
    }

    void ParseBetween(TFilterComparison& comparison) {
        comparison.Test = tstBetween;
        comparison.Right.push_back(ParseValue("A value"));
        if (!lexer_.TakeWord("and"))
            lexer_.FailExpected("\"and\"");
        comparison.Right.push_back(ParseValue("A value"));
    }

    void ParseLike(TFilterComparison& comparison) {
        comparison.Test = tstLike;
        if (lexer_.Token().Kind != fftString)
            lexer_.FailExpected("A pattern in quotes");
        const std::string text = lexer_.Take().Text;
        char escape = 0;
        if (lexer_.TakeWord("escape")) {
            if (lexer_.Token().Kind != fftString || lexer_.Token().Text.size() != 1)
                lexer_.FailExpected("One character in quotes");
            escape = lexer_.Take().Text[0];
        }
        comparison.HasPattern = true;
        comparison.Pattern = TFilterPattern::OfLike(text, escape, options_.CaseInsensitive);
    }

    void ParseOrder(TFilterComparison& comparison) {
        struct TSymbol {
            std::string_view Text;
            TFilterTest Test;
            TFilterTest Turned; // with the sides changed
        };
        static constexpr TSymbol symbols[] = {{"=", tstEqual, tstEqual},
                                              {"<>", tstNotEqual, tstNotEqual},
                                              {"!=", tstNotEqual, tstNotEqual},
                                              {"<", tstLess, tstGreater},
                                              {"<=", tstLessOrEqual, tstGreaterOrEqual},
                                              {">", tstGreater, tstLess},
                                              {">=", tstGreaterOrEqual, tstLessOrEqual}};
        for (const TSymbol& symbol : symbols) {
            if (!lexer_.TakeSymbol(symbol.Text))
                continue;
            comparison.Test = symbol.Test;
            comparison.Right.push_back(ParseValue("A value"));
            if (comparison.Left.Column < 0 && comparison.Right[0].Column >= 0) {
                std::swap(comparison.Left, comparison.Right[0]);
                comparison.Test = symbol.Turned;
            }
            SetPattern(comparison);
            return;
        }
        lexer_.FailExpected("A comparison");
    }

    void SetPattern(TFilterComparison& comparison) const {
        const TFilterOperand& right = comparison.Right[0];
        comparison.HasPattern = !options_.NoPartialCompare && comparison.Test <= tstNotEqual &&
                                right.Column < 0 && right.Value.Kind == fvkText &&
                                right.Value.Text.find('*') != std::string::npos;
        if (comparison.HasPattern)
            comparison.Pattern = TFilterPattern::OfFilter(right.Value.Text, options_.CaseInsensitive);
    }

    TFilterOperand ParseValue(const std::string& expected) {
        TFilterOperand operand;
        const std::size_t at = lexer_.Token().At;
        operand.Position = lexer_.PositionOf(at);
        std::string sign;
        if (lexer_.TakeSymbol("-"))
            sign = "-";
        else if (lexer_.TakeSymbol("+"))
            sign = "+";
        const TFilterToken& token = lexer_.Token();
        if (token.Kind == fftNumber) {
            const std::string text = sign + lexer_.Take().Text;
            operand.Value = *ConvertFilterValue(TFilterValue::OfText(text), fvkNumber, options_);
            operand.Value.Text = text;
        } else if (!sign.empty()) {
            lexer_.FailExpected("A number");
        } else if (token.Kind == fftString) {
            operand.Value = TFilterValue::OfText(lexer_.Take().Text);
        } else if (token.IsWord("true") || token.IsWord("false")) {
            operand.Value = TFilterValue::OfBoolean(token.IsWord("true"));
            lexer_.Take();
        } else if (token.IsWord("null")) {
            lexer_.Take();
        } else if (token.Kind == fftColumn || (token.Kind == fftName && !IsWord(token.Text))) {
            operand.Column = ColumnIndex(lexer_.Take(), operand.Position);
        } else {
            lexer_.FailExpected(expected);
        }
        return operand;
    }

    int ColumnIndex(const TFilterToken& token, int position) {
        const auto found =
            columns_.try_emplace(LowerAscii(token.Text), static_cast<int>(program_.Columns.size()));
        if (found.second)
            program_.Columns.push_back({token.Text, token.LastPart, position});
        return found.first->second;
    }

    TFilterLexer lexer_;
    const TFilterOptions& options_;
    TFilterProgram program_;
    std::vector<TPending> pending_;
    std::unordered_map<std::string, int> columns_;
    int depth_ = 0;
};

} // namespace

namespace detail {

TFilterProgram ParseFilter(std::string_view text, const TFilterOptions& options) {
    return TFilterParser(text, options).Parse();
}

} // namespace detail

bool IsFilterName(std::string_view name) {
    if (name.empty() || !BeginsFilterName(name[0]) || IsWord(name))
        return false;
    for (const char c : name)
        if (!IsNamePart(c))
            return false;
    return true;
}

} // namespace lumora
