// SQL texts that stand in a statement as they are, each beside what it means: the sample model's virtual
// fields and predefined conditions, and the formulas and sub-queries of random queries.
#pragma once

#include "tests/truth/rows.h"

#include <string>
#include <vector>

namespace lumora::truth {

struct VirtualField {
    std::string sql;
    std::vector<std::string> columns; // "alias.column"
    Cell (*value)(const Cells& columns);
};

struct Predicate {
    std::string sql;
    std::vector<std::string> columns;
    // Each value is a list, of one item when it is a scalar.
    Truth (*holds)(const Cells& columns, const std::vector<Cells>& values, const Table& orders);
};

enum class Operand { any, text, number, ordered }; // ordered: no booleans, which have no least and greatest

struct Formula {
    std::string sql;
    int operands;
    Operand kind;
    Cell (*ofRow)(const Cells& operands);                // null for an aggregate
    Cell (*ofGroup)(const std::vector<Cells>& operands); // of an aggregate: those of each row
};

struct SubQuery {
    std::string sql;
    Operand kind;
    std::string table;
    std::string column;
    std::string where; // a column, and what it is equal to; empty for all rows
    Cell equals;
};

extern const std::vector<VirtualField> virtualFields;
extern const std::vector<Predicate> predicates;
extern const std::vector<Formula> formulas;
extern const std::vector<SubQuery> subQueries;

// The entry of that text; std::out_of_range when there is none.
template <typename Entry>
const Entry& entryOf(const std::vector<Entry>& entries, const std::string& sql) {
    for (const Entry& entry : entries)
        if (entry.sql == sql)
            return entry;
    throw std::out_of_range("no meaning known of " + sql);
}

} // namespace lumora::truth
