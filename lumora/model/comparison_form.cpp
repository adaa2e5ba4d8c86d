#include "lumora/model/comparison_form.h"

#include "lumora/platform/ascii.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace lumora {

namespace {

// The word, or the character, that a text ends with; blanks behind it don't count.
std::string_view LastWord(std::string_view text) {
    text = Trim(text);
    std::size_t start = text.size();
    while (start > 0 && LowerAscii(text[start - 1]) >= 'a' && LowerAscii(text[start - 1]) <= 'z')
        --start;
    return start == text.size() && start > 0 ? text.substr(start - 1) : text.substr(start);
}

class TFinder {
public:
    explicit TFinder(std::string_view text) : rest_(text) {}

    std::vector<TComparisonPiece> Find() {
        bool any = false;
        while (!rest_.empty()) {
            if (Accept("@f")) {
                const std::string_view behindField = rest_;
                std::optional<TComparisonPiece> comparison = StandsFree() ? TakeComparison() : std::nullopt;
                if (!comparison)
                    rest_ = behindField;
                any = any || comparison;
                pieces_.push_back(comparison ? *std::move(comparison)
                                             : TComparisonPiece{TComparisonPiece::Field, {}});
            } else if (!TakeLiteral()) {
                return {};
            }
        }
        return any ? std::move(pieces_) : std::vector<TComparisonPiece>();
    }

private:
    void SkipBlanks() {
        while (!rest_.empty() && IsBlank(rest_.front()))
            rest_.remove_prefix(1);
    }

    bool Accept(std::string_view text) {
        if (!SameText(rest_.substr(0, text.size()), text))
            return false;
        rest_.remove_prefix(text.size());
        return true;
    }

    // A word with something else than a letter behind it.
    bool AcceptWord(std::string_view word) {
        const std::string_view before = rest_;
        SkipBlanks();
        if (Accept(word) &&
            (rest_.empty() || LowerAscii(rest_.front()) < 'a' || LowerAscii(rest_.front()) > 'z'))
            return true;
        rest_ = before;
        return false;
    }

    // One character, or a text in quotes. False for one that takes a value.
    bool TakeLiteral() {
        std::size_t size = 1;
        if (rest_.front() == '\'')
            size = std::min(rest_.find('\'', 1), rest_.size() - 1) + 1;
        const std::string_view text = rest_.substr(0, size);
        if (text.find('@') != std::string_view::npos)
            return false;
        if (pieces_.empty() || pieces_.back().Kind != TComparisonPiece::Literal)
            pieces_.emplace_back();
        pieces_.back().Text += text;
        rest_.remove_prefix(size);
        return true;
    }

    // Whether what stands before the field leaves it to the comparison.
    bool StandsFree() const {
        if (pieces_.empty())
            return true;
        if (pieces_.back().Kind != TComparisonPiece::Literal)
            return false;
        const std::string_view word = LastWord(pieces_.back().Text);
        return word.empty() || word == "(" || SameText(word, "not") || SameText(word, "and") ||
               SameText(word, "or");
    }

    bool EndsHere() {
        const std::string_view behind = rest_;
        SkipBlanks();
        const bool ends = rest_.empty() || rest_.front() == ')' || AcceptWord("and") || AcceptWord("or");
        rest_ = behind;
        return ends;
    }

    std::optional<TComparisonPiece> TakeComparison() {
        TComparisonPiece piece{TComparisonPiece::Comparison, {}};
        const bool negated = AcceptWord("not");
        bool complete = false;
        if (AcceptWord("between")) {
            piece.Operator = negated ? cmNotBetween : cmBetween;
            complete = TakeValue(piece.Value) && AcceptWord("and") && TakeValue(piece.SecondValue);
        } else if (AcceptWord("in")) {
            piece.Operator = negated ? cmNotInList : cmInList;
            complete = TakeSymbol('(') && TakeValue(piece.Value) && TakeSymbol(')');
        } else {
            complete = !negated && TakeOperator(piece.Operator) && TakeValue(piece.Value);
        }
        return complete && EndsHere() ? std::optional(std::move(piece)) : std::nullopt;
    }

    bool TakeOperator(TComparison& comparison) {
        static constexpr std::pair<std::string_view, TComparison> operators[] = {
            {"<=", cmLessOrEqual}, {">=", cmGreaterOrEqual}, {"<>", cmNotEqual},
            {"!=", cmNotEqual},    {"=", cmEqual},           {"<", cmLess},
            {">", cmGreater}};
        SkipBlanks();
        for (const auto& [text, meaning] : operators)
            if (Accept(text)) {
                comparison = meaning;
                return true;
            }
        return false;
    }

    bool TakeSymbol(char symbol) {
        SkipBlanks();
        return Accept({&symbol, 1});
    }

    // "@1", in quotes or not.
    bool TakeValue(int& value) {
        const bool quoted = TakeSymbol('\'');
        if (!Accept("@"))
            return false;
        value = 0;
        for (; !rest_.empty() && IsDigit(rest_.front()) && value < 10; rest_.remove_prefix(1))
            value = value * 10 + (rest_.front() - '0');
        return value > 0 && (!quoted || Accept("'"));
    }

    std::string_view rest_;
    std::vector<TComparisonPiece> pieces_;
};

} // namespace

std::vector<TComparisonPiece> FindComparisons(std::string_view sqlTemplate) {
    return TFinder(sqlTemplate).Find();
}

} // namespace lumora
