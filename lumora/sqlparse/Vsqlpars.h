// The SELECT parser: reads one statement into a parse tree. It knows nothing of models.
//
//     TVSQLParser parser;
//     parser.SetSQLText("select c.name from customers c where c.city = 'Oslo'");
//     parser.Parse();
//     const TSQLBracket& where = *parser.GetResult().RootBracket;
//
// The texts of the tree are views of a statement that the parser keeps: they last until its next one. A
// parser that is used again keeps its memory.
#pragma once

#include "lumora/sqlparse/parse_tree.h"
#include "lumora/sqlparse/parser_error.h"
#include "lumora/sqlparse/sql_tokens.h"

#include <cstddef>
#include <string_view>

namespace lumora {

class TSortedNames;
class TStringList;

class TVSQLParser {
public:
    virtual ~TVSQLParser() = default;

    void SetSQL(const TStringList& lines);
    void SetSQLText(std::string_view text);
    // A strict parser records joins and GROUP BY, takes "not" before a group and positions among the names of
    // ORDER BY, and refuses by name what it cannot record.
    void SetStrict(bool strict) { strict_ = strict; }
    // Whatever the text, gives a result or raises ESQLParserError; the result then holds what was read before
    // it.
    void Parse();
    const TVParserResult& GetResult() const { return result_; }
    TVParserResult& GetResult() { return result_; }

protected:
    virtual void ProcessSelect();
    virtual void ProcessFrom();
    virtual void ProcessWhere();
    virtual void ProcessOrderBy();
    virtual void ProcessGroupBy();

private:
    [[noreturn]] void Fail(TMessageId message) const;
    // `expected` is what a strict parser says should stand here.
    [[noreturn]] void FailWrong(std::string_view expected) const;
    [[noreturn]] void Refuse(const TSQLToken& token) const;

    const TSQLToken& Token() const { return *at_; }
    const TSQLToken& Peek() const { return at_[AtEnd() ? 0 : 1]; }
    bool AtEnd() const { return at_->Kind == tkEnd; }
    bool Is(TSQLWord word) const { return at_->Word == word; }
    bool Is(char symbol) const { return at_->Symbol == symbol; }
    bool HasRole(unsigned roles) const { return (at_->Roles & roles) != 0; }
    template <typename T>
    bool Accept(T wordOrSymbol) {
        const bool found = Is(wordOrSymbol);
        at_ += found ? 1 : 0;
        return found;
    }
    TTextPlace PlaceOf(const TSQLToken& token) const;
    TTextPlace PlaceFrom(const TSQLToken* first) const; // up to the present token
    void Must(TSQLWord word);
    void Skip(char symbol);
    // Moves past the token, or past what it opens.
    void Advance() { at_ += at_->Step; }
    bool OpensGroup() const;
    static bool EndsPredicate(const TSQLToken& token);

    std::string_view TextFrom(const TSQLToken* first);
    std::string_view ProcessIdentifier();
    std::string_view DottedName();
    void ResultField();
    bool TakeBareAlias(const TSQLToken* first, TSQLResultField& field);
    std::string_view SQLExpression();
    void Table();
    void AddTable(std::string_view name, TSQLTable& table);
    void SkipHints();
    void JoinedTables();
    void JoinedTable(TSQLWord kind, const TTextPlace& place);
    bool StandsAlias() const;
    TSQLBracket* BooleanBracket();
    TSQLConditionNode* BooleanExpression();
    TSQLConditionNode* BooleanTerm();
    TSQLConditionNode* BooleanFactor();
    TSQLConditionNode* Condition(bool negated);
    TSQLConditionNode* Negate(TSQLConditionNode* group);
    TSQLBracket* NewBracket(std::string_view op, TSQLConditionNode* first, const TSQLToken* start);
    void Comparison(TSQLCondition& condition);
    std::string_view OperatorText();
    std::string_view TakeOperator();
    std::string_view RightValue(TSQLCondition& condition);
    std::string_view SecondValue(TSQLCondition& condition);
    std::string_view ConditionValue(unsigned ends, TSQLCondition& condition);
    TSQLResultField& FieldByNumber();
    TSQLResultField& FieldByName(TSortedNames& names);
    std::string_view SortedName();
    void SortItem();
    void CheckEnd();

    TVParserResult result_;
    TSQLTokens tokens_;
    const TSQLToken* at_ = nullptr;
    bool strict_ = false;
};

} // namespace lumora
