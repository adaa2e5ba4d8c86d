// The queries that are measured: conditions nested four deep, made from a fixed seed.
#pragma once

#include "lumora/lumora.h"

#include <string>
#include <vector>

namespace lumora::bench {

// Result fields and `conditions` conditions for an active panel that has a model.
void FillQuery(TVQueryPanel& panel, int conditions);

// A model with a panel that holds such a query.
class TBenchQuery {
public:
    explicit TBenchQuery(int conditions);

    TVDBStructure Model;
    TVQueryPanel Panel;
};

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
TPlainQuery MakePlainQuery(TVQueryPanel& panel);
void AppendPlainQuery(std::string& out, const TPlainQuery& query);

} // namespace lumora::bench
