// The SELECT parser: reads one statement into a parse tree. It knows nothing of models.
#pragma once

#include "lumora/platform/string_list.h"
#include "lumora/sqlparse/Vscanner.h"
#include "lumora/sqlparse/parse_tree.h"
#include "lumora/support/lumora_error.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lumora {

// The message ends with a line break, "Line:" and the number of the line, from 1.
class ESQLParserError : public EVLumoraError {
public:
    // The code is the message's id.
    ESQLParserError(TMessageId message, int line, std::string_view argument = {})
        : EVLumoraError(message,
                        FormatText(Message(message), {argument}) + "\r\nLine:" + std::to_string(line)),
          Line(line) {}

    const int Line;
};

// Parentheses nest no deeper than this.
inline constexpr int MaxSQLNesting = 1000;

class TVSQLParser {
public:
    virtual ~TVSQLParser() = default;

    void SetSQL(const TStringList& lines) { SetSQLText(lines.GetText()); }
    void SetSQLText(std::string_view text);
    // A strict parser records joins and GROUP BY, takes "not" before a group, and refuses by name what it
    // cannot record.
    void SetStrict(bool strict) { strict_ = strict; }
    // Whatever the text, gives a result or raises ESQLParserError; the result then holds what was read before
    // it.
    void Parse();
    const TVParserResult& GetResult() const { return result_; }

protected:
    virtual void ProcessSelect();
    virtual void ProcessFrom();
    virtual void ProcessWhere();
    virtual void ProcessOrderBy();
    virtual void ProcessGroupBy();

private:
    struct TParseToken {
        std::string_view Text;
        std::int32_t Line;
        std::int32_t Match; // for "(" and CASE the token that closes it, -1 when there is none
        TTokenKind Kind;
        TSQLWord Word;
        std::uint8_t Roles; // TTokenRole bits
        bool Tidy;          // no more than one blank stands before it
        bool Group;         // a "(" with a comparison inside, which is not a sub-select's own
    };
    enum TTokenRole : std::uint8_t {
        trComparison = 1, // an operator that compares
        trEndsValue = 2,  // ends a condition's value: a comparison, "and", "or", a clause, "," ")" or the end
        trEndsLeft = 4,   // ends a left side besides: "not"
        trJoinWord = 8    // ends a value unless it is a function's name
    };
    static std::uint8_t RolesOf(const TToken& token, TSQLWord word);

    void ReadTokens();
    void OpenPair(std::vector<std::int32_t>& open);
    void ClosePair(std::vector<std::int32_t>& open, bool isCase);
    [[noreturn]] void Fail(TMessageId message) const;
    [[noreturn]] void FailWrong() const;
    [[noreturn]] void Refuse(const TParseToken& token) const;

    const TParseToken& Token() const { return tokens_[at_]; }
    const TParseToken& Peek() const { return tokens_[at_ + (AtEnd() ? 0 : 1)]; }
    bool AtEnd() const { return Token().Kind == tkEnd; }
    bool Is(TSQLWord word) const { return Token().Word == word; }
    bool Is(char symbol) const { return Token().Text.size() == 1 && Token().Text[0] == symbol; }
    bool Accept(TSQLWord word);
    bool Accept(char symbol);
    void Must(TSQLWord word);
    void Skip(char symbol);
    // Moves past the token, or past what it opens.
    void Advance();
    bool IsJoinWord() const { return (Token().Roles & trJoinWord) != 0; }
    bool IsClauseWord() const { return IsClauseWord(Token()); }
    // A clause, supported or not, begins with the token, or the statement ends there.
    static bool IsClauseWord(const TParseToken& token) {
        return BeginsClause(token.Word) || (token.Text.size() == 1 && token.Text[0] == ';');
    }
    bool OpensGroup() const;
    bool EndsPredicate(const TParseToken& token) const;

    std::string_view TextFrom(std::size_t first);
    std::string_view ProcessIdentifier();
    std::string_view DottedName();
    void ResultField();
    std::string_view SQLExpression();
    void Table();
    void SkipHints();
    void JoinedTables();
    void JoinedTable(TSQLWord kind, int line);
    TSQLBracket* BooleanBracket();
    TSQLConditionNode* BooleanExpression();
    TSQLConditionNode* BooleanTerm();
    TSQLConditionNode* BooleanFactor();
    TSQLConditionNode* Condition(bool negated);
    TSQLConditionNode* Negate(TSQLConditionNode* group);
    TSQLBracket* NewBracket(const char* op, TSQLConditionNode* first, int line);
    void Comparison(TSQLCondition& condition);
    std::string_view ConditionValue(bool isLeft, TSQLCondition& condition);
    std::string_view RightValue(TSQLCondition& condition);
    bool EndsValue(bool isLeft) const;
    TSQLResultField& FieldByNumber();
    TSQLResultField& FieldByName(std::unordered_map<std::string, int>& fieldsByExpr);
    void CheckEnd();

    TVParserResult result_;
    std::vector<TParseToken> tokens_;
    std::size_t at_ = 0;
    bool strict_ = false;
};

} // namespace lumora
