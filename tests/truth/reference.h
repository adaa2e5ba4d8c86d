// The rows that a query asks for, worked out from its rows and result fields alone.
#pragma once

#include "panel/Vquerpnl.h"
#include "tests/truth/catalogue.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace lumora::truth {

// What engines do each in their own way. What else they differ in is evened out: SQLite's "like" by its
// pragma, PostgreSQL's collation by the cluster's locale, sums and averages by amounts that are multiples of
// a half and by the ten digits that are compared, the functions of dates by functions of the same names.
struct Engine {
    std::string name;
    bool nullsFirst;     // in ascending order
    char likeEscape;     // 0 for none
    bool quotesBooleans; // as the model is set for it: SQLite's booleans are numbers
};
inline const Engine sqliteEngine = {"SQLite", true, 0, false};
inline const Engine postgresEngine = {"PostgreSQL", false, '\\', true};

struct AnswerRow {
    std::string shown;
    Cells keys; // what the rows are sorted by
};
struct Answer {
    std::vector<AnswerRow> rows; // in no order
    std::vector<bool> descending;
};

// An enabled condition that no disabled bracket is around, and its own bracket.
struct LiveCondition {
    TFilterCond* condition;
    const TFilterBracket* bracket;
};
std::vector<LiveCondition> liveConditions(const TVQueryPanel& panel);

struct FromTable {
    const TDSTable* table;
    const TDSLink* link; // none for the first
};

struct ConditionValue {
    TFieldType type;
    TValueKind kind;
    std::vector<std::string> texts; // of a list its items
};
// The values for which the condition has a place.
std::vector<ConditionValue> valuesOf(const TFilterCond& condition);

class Reference {
public:
    Reference(const TVCustomDBStructure& model, const std::vector<Table>& tables);

    Answer answer(const TVQueryPanel& panel, const Engine& engine) const;
    // The tables in the order of FROM, a table's aliases each by itself.
    std::vector<FromTable> fromTables(const TVQueryPanel& panel) const;

private:
    using JoinedRow =
        std::vector<const Cells*>; // one for each table of the model; null where a join found none
    using Read = std::function<Cell(const JoinedRow&)>;
    using Test = std::function<Truth(const JoinedRow&)>;
    using Index = std::unordered_map<std::string, std::vector<const Cells*>>;

    struct OutputColumn {
        const Formula* formula;
        std::vector<Read> operands;
        std::vector<Read> grouping;
    };

    std::size_t indexOf(const TDSTable& table) const;
    const Table& dataOf(const TDSTable& table) const;
    Read columnRead(const std::string& aliasAndColumn) const;
    std::vector<Read> columnReads(const std::vector<std::string>& columns) const;
    std::vector<Read> groupingReads(const TDSField& field) const;
    Read fieldRead(const TDSField& field) const;

    std::vector<const TDSTable*> path(const TDSTable& from, const TDSTable& to) const;
    void addTable(std::vector<FromTable>& tables, const TDSTable& table) const;
    std::vector<JoinedRow> join(const std::vector<FromTable>& from, bool outer) const;
    Index indexRows(const TDSTable& table, const TStringList& columns) const;

    std::optional<Test> bracketTest(const TFilterBracket& bracket, const Engine& engine, bool strict) const;
    Test conditionTest(const TFilterCond& condition, const Engine& engine, bool strict) const;
    Test simpleTest(const TSimpleCond& condition, const std::vector<Cells>& values,
                    const Engine& engine) const;
    Cells subQueryCells(const std::string& sql) const;

    OutputColumn outputColumn(const TResultField& field) const;
    std::vector<Cells> plainRows(const std::vector<OutputColumn>& columns,
                                 const std::vector<JoinedRow>& rows) const;
    std::vector<Cells> groupedRows(const std::vector<OutputColumn>& columns,
                                   const std::vector<JoinedRow>& rows) const;
    Cells allColumns(const std::vector<FromTable>& from, const JoinedRow& row) const;

    const TVCustomDBStructure& model_;
    const std::vector<Table>& tables_;
};

} // namespace lumora::truth
