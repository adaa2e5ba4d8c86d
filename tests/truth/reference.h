// The rows that a query asks for, worked out from its rows, result fields and links alone.
#pragma once

#include "lumora/lumora.h"
#include "tests/truth/catalogue.h"

#include <string>
#include <vector>

namespace lumora::truth {

// What engines do each in their own way. What else they differ in is evened out: SQLite's "like" by its
// pragma, the order of texts by PostgreSQL's locale and MariaDB's collation, sums and averages by amounts
// that are multiples of a half and by the ten digits that are compared, the functions of dates by functions
// of the same names.
struct Engine {
    std::string name;
    bool nullsFirst;       // in ascending order
    char likeEscape;       // 0 for none
    bool quotesBooleans;   // as the model is set for it: SQLite's and MariaDB's booleans are numbers
    bool joinsFull = true; // MariaDB doesn't
};
inline const Engine sqliteEngine = {"SQLite", true, 0, false};
inline const Engine postgresEngine = {"PostgreSQL", false, '\\', true};
inline const Engine mariaDbEngine = {"MariaDB", true, '\\', false, false};

struct AnswerRow {
    std::string shown;
    Cells keys; // what the rows are sorted by
};
struct Answer {
    std::vector<AnswerRow> rows; // in no order
    std::vector<bool> descending;
};
Answer answerOf(const TVQueryPanel& panel, const std::vector<Table>& tables, const Engine& engine);

// An enabled condition that no disabled bracket is around, and its own bracket.
struct LiveCondition {
    TFilterCond* condition;
    const TFilterBracket* bracket;
};
std::vector<LiveCondition> liveConditions(const TVQueryPanel& panel);

// A value for which a condition has a place.
struct ConditionValue {
    TFieldType type;
    TValueKind kind;
    std::vector<std::string> texts; // of a list its items
};
std::vector<ConditionValue> valuesOf(const TFilterCond& condition);

struct FromTable {
    const TDSTable* table;
    const TDSLink* link; // none for the first
};
// In the order of FROM, each alias of a table by itself.
std::vector<FromTable> fromTables(const TVQueryPanel& panel);
const TDSTable* otherEnd(const TDSLink& link, const TDSTable& table);

} // namespace lumora::truth
