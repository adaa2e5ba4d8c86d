// Writes a statement's tree as lines of SQL.
#pragma once

#include "lumora/model/sql_syntax.h"
#include "lumora/statement/select.h"

#include <string>
#include <string_view>

namespace lumora {

class TStringList;

struct TPrintOptions {
    TSQLSyntax Syntax = ssSQL2; // where joins are written
    TNameQuoting Quoting = nqPlain;
    bool BracketJoins = false;
    std::string_view Limit;         // the line that gives the first "@1" rows
    bool BracketConditions = false; // link conditions in WHERE; a leaf knows for itself
};

class TSQLPrinter {
public:
    TSQLPrinter(const TStatement& statement, const TPrintOptions& options)
        : statement_(statement), select_(statement.Select), options_(options) {}

    // The whole statement, one clause part a line; `where` are lines to write in the place of the tree's own.
    void Print(TStringList& lines, const TStringList& where) const;

    // The clauses by themselves.
    void AppendSelect(std::string& line) const;
    void PrintFrom(TStringList& lines) const;
    void PrintWhere(TStringList& lines) const; // the conditions alone
    // The line of WHERE that joins a table.
    void AppendLink(std::string& line, const TDSLink& link, TJoinKind kind) const;
    // Whether links are WHERE lines.
    bool JoinsInWhere() const { return options_.Syntax != ssSQL2 && JoinCount() > 0; }

private:
    int JoinCount() const;
    void PrintLinks(TStringList& lines, std::string_view after) const;
    void PrintBracket(TStringList& lines, const TPredicate& bracket, std::string_view after) const;
    template <typename TItem>
    void AppendItems(std::string& line, const TNodeList<TItem>& items) const;

    const TStatement& statement_;
    const TSelect& select_;
    TPrintOptions options_;
};

} // namespace lumora
