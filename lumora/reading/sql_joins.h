// Joins of a statement that is read into a strict query: finds the model's links in it, and makes sure that
// the query joins its tables in the same way.
#pragma once

#include "lumora/query/query.h"
#include "lumora/reading/sql_names.h"
#include "lumora/sqlparse/Vsqlpars.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TDSLink;
class TRTableList;
class TDSTable;

class TSQLJoins {
public:
    // Settles which table of the model each use stands for. EVQueryPanelError for one that the model does not
    // join so.
    TSQLJoins(TVQuery& query, TVParserResult& statement, TSQLNames& names);

    // The statement's WHERE without the comparisons that are links, and with what else stands behind the ON
    // of inner joins.
    const TSQLBracket& WhereWithoutJoins() const { return *where_; }
    // To be called when the query is read: builds it and compares its tables with the statement's. Where they
    // differ, the query gets a main table and shown tables of its own. `exactly`: those that are equal too.
    void MakeQueryAgree(bool exactly);

private:
    // A comparison of two columns of different uses.
    struct TPair {
        TSQLColumn Left;
        TSQLColumn Right;
        std::string_view Operator;
        TSQLConditionNode* Node;
        bool Used = false;
    };
    // What joins a use to one before it.
    struct TOn {
        TSQLWord Kind = swInner;
        std::vector<TPair> Pairs;
        std::vector<TSQLConditionNode*> Others; // what is no such comparison
        bool Exists = false;
    };
    // A table as it comes into the statement.
    struct TStep {
        int Use;
        TDSLink* Link; // none for the first
        TJoinKind Kind;
    };

    void ReadOn(const TSQLJoin& join);
    void ReadWhere();
    void Collect(TSQLConditionNode* node, std::vector<TPair>& pairs, std::vector<TSQLConditionNode*>& others);
    bool IsPair(const TSQLCondition& condition, TPair& pair) const;
    bool Assign(int use);
    bool FindSteps();
    bool Reached(int use) const;
    bool JoinNext(bool inOrder);
    bool JoinByOwnOn(int use);
    bool JoinByAnyPair(int use);
    TDSLink* FindLink(int use, const std::vector<TPair*>& pairs, std::vector<TPair*>& used) const;
    TPair* FindPair(int use, std::string_view column, std::string_view op, int partner,
                    std::string_view partnerColumn, const std::vector<TPair*>& pairs) const;
    void DropRepeated();
    bool Repeats(const TPair& pair) const;
    bool IsPairOf(const TDSLink& link, const TSQLColumn& first, const TSQLColumn& second) const;
    std::vector<TSQLConditionNode*> RestOfOns() const;
    std::vector<TSQLConditionNode*> RestOfWhere(bool isOpened) const;
    void MakeWhere();
    [[noreturn]] void RefuseJoin(int use) const;
    bool Agrees() const;
    bool SameOrder(const TRTableList& made) const;

    TVQuery& query_;
    TVParserResult& statement_;
    TSQLNames& names_;
    std::vector<TOn> ons_; // by use
    std::vector<TPair> wherePairs_;
    std::vector<TSQLConditionNode*> whereOthers_;
    std::vector<TStep> steps_;
    bool hasRight_ = false; // a join that keeps rows of the table that it joins
    int tries_ = 0;
    const TSQLBracket* where_;
};

} // namespace lumora
