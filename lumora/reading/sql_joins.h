// Joins of a statement that is read into a strict query: finds the model's links in it, and makes sure that
// the query joins its tables in the same way.
#pragma once

#include "lumora/query/query.h"
#include "lumora/sqlparse/Vsqlpars.h"

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace lumora {

class TDSLink;
class TDSTable;

class TSQLJoins {
public:
    // EVQueryPanelError for a table that the model does not know or does not join so.
    TSQLJoins(TVQuery& query, const TVParserResult& statement);

    // The statement's WHERE without the comparisons that are links.
    const TSQLBracket& WhereWithoutJoins() const { return *where_; }
    // To be called when the query is read: builds it and compares its tables, joins and groups with
    // the statement's. EVQueryPanelError names what differs.
    void CheckAgainstQuery();

private:
    // A table of the statement, and the link that joins it to one before.
    struct TJoined {
        TDSTable* Table = nullptr;
        TDSLink* Link = nullptr;
        TSQLWord Kind = swInner; // as JOIN says it, seen from the joined table
        TTextPlace Place;
    };

    void FindTables();
    void ReadJoinClauses();
    void ReadJoinsInWhere();
    std::vector<TSQLConditionNode*> NodesOfWhere();
    void JoinFromFirstTable(std::unordered_set<std::string>& comparisons);
    bool FindLinkInWhere(TJoined& joined, const std::unordered_set<const TDSTable*>& reached,
                         std::unordered_set<std::string>& comparisons) const;
    [[noreturn]] void RefuseJoin(const TJoined& joined) const;
    const TJoined* FirstDifference() const;
    const TJoined* Find(const TDSTable* table) const;
    void CheckGroupBy() const;

    TVQuery& query_;
    const TVCustomDBStructure& model_;
    const TVParserResult& statement_;
    TSQLBracket rest_; // the root's nodes that are no joins
    const TSQLBracket* where_ = nullptr;
    std::vector<TJoined> tables_;
};

} // namespace lumora
