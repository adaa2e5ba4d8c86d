#include "lumora/qtsql/checkchoices.h"

#include "lumora/platform/ascii.h"
#include "lumora/sqlparse/Vscanner.h"

#include <algorithm>

namespace lumora {

namespace {

bool isWord(const TToken& token, std::string_view word) {
    return token.Kind == tkIdentifier && SameText(token.Text, word);
}

// The tokens without what only holds others together: parentheses, and casts ("::text").
std::vector<TToken> essentialTokens(std::string_view text) {
    std::vector<TToken> tokens;
    bool inCast = false;
    for (TVScanner scanner(text); !scanner.AtEnd(); scanner.Next()) {
        const TToken& token = scanner.Token();
        if (token.IsSymbol(':')) {
            inCast = true;
        } else if (inCast && token.IsSymbol('(')) { // varchar(10)
            while (!scanner.AtEnd() && !scanner.Token().IsSymbol(')'))
                scanner.Next();
            inCast = false;
        } else if (!inCast || !token.IsName()) {
            inCast = false;
            static constexpr std::string_view brackets = "()[]`";
            if (token.Text.size() != 1 || brackets.find(token.Text[0]) == std::string_view::npos)
                tokens.push_back(token);
        }
        if (scanner.AtEnd())
            break;
    }
    return tokens;
}

std::string unquoted(std::string_view literal) {
    std::string text;
    for (std::size_t i = 1; i + 1 < literal.size(); ++i) {
        text += literal[i];
        i += literal[i] == literal.front() ? 1 : 0; // a doubled quote
    }
    return text;
}

class ChoiceReader {
public:
    explicit ChoiceReader(std::string_view condition) : tokens_(essentialTokens(condition)) {}

    CheckedColumn read() {
        if (tokens_.empty() || !tokens_.front().IsName())
            return {};
        CheckedColumn checked{std::string(tokens_.front().Name()), {}};
        at_ = 1;
        if (!take("in") && !(takeSymbol('=') && take("any") && take("array")))
            return {};
        do {
            if (!takeValue(checked.choices))
                return {};
        } while (takeSymbol(','));
        const bool orNull = at_ + 4 == tokens_.size() && take("or") &&
                            SameText(tokens_[at_++].Name(), checked.column) && take("is") && take("null");
        return at_ == tokens_.size() || orNull ? checked : CheckedColumn();
    }

private:
    bool take(std::string_view word) {
        const bool found = at_ < tokens_.size() && isWord(tokens_[at_], word);
        at_ += found ? 1 : 0;
        return found;
    }
    bool takeSymbol(char symbol) {
        const bool found = at_ < tokens_.size() && tokens_[at_].IsSymbol(symbol);
        at_ += found ? 1 : 0;
        return found;
    }
    bool takeValue(std::vector<std::string>& values) {
        const bool negative = takeSymbol('-');
        if (at_ == tokens_.size())
            return false;
        const TToken& token = tokens_[at_++];
        if (token.Kind == tkNumber)
            values.push_back((negative ? "-" : "") + std::string(token.Text));
        else if (token.Kind == tkString && !negative)
            values.push_back(unquoted(token.Text));
        else
            return false;
        return true;
    }

    std::vector<TToken> tokens_;
    std::size_t at_ = 0;
};

} // namespace

CheckedColumn choicesOfCheck(std::string_view condition) {
    return ChoiceReader(condition).read();
}

void takeChoices(std::vector<ColumnInfo>& columns, CheckedColumn checked) {
    for (ColumnInfo& column : columns)
        if (SameText(column.name, checked.column) && column.choices.empty())
            column.choices = std::move(checked.choices);
}

std::vector<std::string_view> checksOf(std::string_view tableDefinition) {
    std::vector<std::string_view> checks;
    for (TVScanner scanner(tableDefinition); !scanner.AtEnd(); scanner.Next()) {
        if (!isWord(scanner.Token(), "check"))
            continue;
        scanner.Next();
        const char* const start = scanner.Token().Text.data() + 1;
        int depth = 0;
        for (; !scanner.AtEnd(); scanner.Next()) {
            depth += scanner.Token().IsSymbol('(') ? 1 : scanner.Token().IsSymbol(')') ? -1 : 0;
            if (depth <= 0)
                break;
        }
        if (scanner.AtEnd())
            break;
        if (scanner.Token().Text.data() > start)
            checks.emplace_back(start, static_cast<std::size_t>(scanner.Token().Text.data() - start));
    }
    return checks;
}

} // namespace lumora
