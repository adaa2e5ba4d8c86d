// The queries that are measured: conditions nested four deep, made from a fixed seed.
#pragma once

#include "lumora/lumora.h"

#include <memory>
#include <string>
#include <vector>

namespace lumora::bench {

// Result fields and `conditions` conditions for an empty query.
void FillQuery(TVQuery& query, int conditions, unsigned seed = 0);

// A model with such queries, each another one; as many as InputCount allows.
class TBenchQueries {
public:
    explicit TBenchQueries(int conditions);

    TVDBStructure Model;
    std::vector<std::unique_ptr<TVQuery>> Queries;
};

// The same in active panels.
class TBenchPanels {
public:
    explicit TBenchPanels(int conditions);

    TVDBStructure Model;
    std::vector<std::unique_ptr<TVQueryPanel>> Panels;
};

// Those of one size are kept for all measurements of that size.
const TBenchQueries& QueriesOf(int conditions);
const TBenchPanels& PanelsOf(int conditions);

// The same query as a bare tree that knows every piece of its text already: what no generator can be faster
// than.
struct TPlainRow {
    bool IsBracket = false;
    bool Negated = false;
    bool IsAny = false;
    std::vector<TPlainRow> Rows;
    std::string Before;
    std::string Field;
    std::string Operator;
    std::string Value;
    std::string After;
};

struct TPlainQuery {
    std::string Head; // the lines before the conditions
    TPlainRow Root;
};

// Taken from the statement of a query that has been built.
TPlainQuery MakePlainQuery(TVQuery& query);
void AppendPlainQuery(std::string& out, const TPlainQuery& query);

} // namespace lumora::bench
