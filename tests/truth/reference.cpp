#include "tests/truth/reference.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>

namespace lumora::truth {

namespace {

// Empty when a column is null: then nothing joins.
template <typename Row>
std::string joinKey(const Row& row, const std::vector<std::size_t>& columns) {
    std::string key;
    for (const std::size_t column : columns) {
        if (isNull(row[column]))
            return {};
        key += show(row[column]) + "|";
    }
    return key;
}

std::vector<std::size_t> positions(const Table& table, const TStringList& columns) {
    std::vector<std::size_t> found;
    for (int i = 0; i < columns.Count(); ++i)
        found.push_back(table.columnIndex(std::string(columns[i])));
    return found;
}

template <typename Reads, typename Row>
Cells readAll(const Reads& reads, const Row& row) {
    Cells cells;
    for (const auto& read : reads)
        cells.push_back(read(row));
    return cells;
}

class Evaluator {
public:
    Evaluator(const TVQueryPanel& panel, const std::vector<Table>& tables, const Engine& engine)
        : panel_(panel), model_(*panel.GetDbStruct()), tables_(tables), engine_(engine) {}

    Answer answer() const {
        const std::vector<FromTable> from = fromTables(panel_);
        std::vector<JoinedRow> rows = join(from, panel_.GetSQLSyntax() != ssSQL1);
        if (panel_.GetRootBracket()->GetEnabled())
            if (const std::optional<Test> test = bracketTest(*panel_.GetRootBracket()))
                std::erase_if(rows, [&](const JoinedRow& row) { return (*test)(row) != Truth::yes; });

        const TRFieldList& fields = panel_.GetQResult().GetResultFields();
        const std::vector<Cells> output = outputRows(fields, rows);
        const std::vector<std::pair<int, int>> sorted = sortedColumns(fields);
        const bool distinct = panel_.GetSQLOptions().Contains(soSelectDistinct);
        std::set<std::string> seen;
        Answer answer;
        for (std::size_t i = 0; i < output.size(); ++i) {
            AnswerRow row{show(fields.JustSorting ? allColumns(from, rows[i]) : output[i]), {}};
            if (distinct && !seen.insert(row.shown).second)
                continue;
            for (const auto& [order, column] : sorted)
                row.keys.push_back(output[i][static_cast<std::size_t>(column)]);
            answer.rows.push_back(std::move(row));
        }
        for (const auto& [order, column] : sorted)
            answer.descending.push_back(fields.GetRField(column)->GetSorting() == stDescending);
        return answer;
    }

private:
    // One row of each table of the model; null where a join found none.
    using JoinedRow = std::vector<const Cells*>;
    using Read = std::function<Cell(const JoinedRow&)>;
    using Test = std::function<Truth(const JoinedRow&)>;
    using Index = std::unordered_map<std::string, std::vector<const Cells*>>;

    struct OutputColumn {
        const Formula* formula;
        std::vector<Read> operands;
        std::vector<Read> grouping;
    };

    std::size_t indexOf(const TDSTable& table) const {
        return static_cast<std::size_t>(model_.IndexOfTable(&table));
    }

    const Table& dataOf(const TDSTable& table) const {
        return *std::find_if(tables_.begin(), tables_.end(),
                             [&](const Table& data) { return data.name == table.GetName(); });
    }

    Read columnRead(const std::string& aliasAndColumn) const {
        const std::size_t dot = aliasAndColumn.find('.');
        const TDSTable& table = *model_.TableByName(tnAlias, aliasAndColumn.substr(0, dot));
        const std::size_t position = indexOf(table);
        const auto column = dataOf(table).columnIndex(aliasAndColumn.substr(dot + 1));
        return [position, column](const JoinedRow& row) {
            return row[position] ? (*row[position])[column] : Cell();
        };
    }

    std::vector<Read> columnReads(const std::vector<std::string>& columns) const {
        std::vector<Read> reads;
        for (const std::string& column : columns)
            reads.push_back(columnRead(column));
        return reads;
    }

    // A field is grouped by the columns that it shows.
    std::vector<Read> groupingReads(const TDSField& field) const {
        if (field.GetKind() == vfkData)
            return {columnRead(field.GetTable()->GetAlias() + "." + field.GetFieldText())};
        return columnReads(entryOf(virtualFields, field.GetFieldText()).columns);
    }

    Read fieldRead(const TDSField& field) const {
        const std::vector<Read> columns = groupingReads(field);
        if (field.GetKind() == vfkData)
            return columns.front();
        return [columns, value = entryOf(virtualFields, field.GetFieldText()).value](const JoinedRow& row) {
            return value(readAll(columns, row));
        };
    }

    Index indexRows(const TDSTable& table, const TStringList& columns) const {
        Index index;
        const Table& data = dataOf(table);
        const std::vector<std::size_t> keys = positions(data, columns);
        for (const Cells& row : data.rows)
            if (const std::string key = joinKey(row, keys); !key.empty())
                index[key].push_back(&row);
        return index;
    }

    std::vector<JoinedRow> join(const std::vector<FromTable>& from, bool outer) const {
        std::vector<JoinedRow> rows;
        const auto tableCount = static_cast<std::size_t>(model_.GetTableCount());
        const auto addAlone = [&](std::size_t position, const Cells& row) {
            rows.emplace_back(tableCount)[position] = &row;
        };
        for (const Cells& row : dataOf(*from.front().table).rows)
            addAlone(indexOf(*from.front().table), row);
        for (std::size_t i = 1; i < from.size(); ++i) {
            const TDSTable& added = *from[i].table;
            const TDSLink& link = *from[i].link;
            const TDSTable& partner = *otherEnd(link, added);
            const bool isSecond = link.Table2 == &added;
            const TDSLinkType type = outer ? link.LinkType : ltInner;
            const bool keepsOld = type == ltOuterFull || type == (isSecond ? ltOuterLeft : ltOuterRight);
            const bool keepsAdded = type == ltOuterFull || type == (isSecond ? ltOuterRight : ltOuterLeft);
            const Index index = indexRows(added, isSecond ? link.Fields2 : link.Fields1);
            const std::vector<std::size_t> keys =
                positions(dataOf(partner), isSecond ? link.Fields1 : link.Fields2);
            std::unordered_set<const Cells*> joined;
            const std::vector<JoinedRow> old = std::move(rows);
            rows.clear();
            for (const JoinedRow& row : old) {
                const Cells* const left = row[indexOf(partner)];
                const auto found = left ? index.find(joinKey(*left, keys)) : index.end();
                if (found == index.end()) {
                    if (keepsOld)
                        rows.push_back(row);
                    continue;
                }
                for (const Cells* const right : found->second) {
                    rows.push_back(row);
                    rows.back()[indexOf(added)] = right;
                    joined.insert(right);
                }
            }
            for (const Cells& row : dataOf(added).rows)
                if (keepsAdded && !joined.contains(&row))
                    addAlone(indexOf(added), row);
        }
        return rows;
    }

    // --- Conditions.

    std::optional<Test> bracketTest(const TFilterBracket& bracket) const {
        std::vector<Test> tests;
        for (int i = 0; i < bracket.GetRowCount(); ++i) {
            const TFilterRow& row = *bracket.GetRow(i);
            if (!row.GetEnabled())
                continue;
            if (row.GetRowType() != frtBracket)
                tests.push_back(conditionTest(static_cast<const TFilterCond&>(row)));
            else if (std::optional<Test> test = bracketTest(static_cast<const TFilterBracket&>(row)))
                tests.push_back(*test);
        }
        if (tests.empty())
            return std::nullopt;
        const TFilterLinkType type = bracket.GetLinkType();
        return [tests, any = type == fltAny || type == fltNone,
                negated = type == fltNone || type == fltNotAll](const JoinedRow& row) {
            Truth truth = any ? Truth::no : Truth::yes;
            for (const Test& test : tests)
                truth = any ? std::max(truth, test(row)) : std::min(truth, test(row));
            return negated ? !truth : truth;
        };
    }

    Cells subQueryCells(const std::string& sql) const {
        const SubQuery& query = entryOf(subQueries, sql);
        const Table& table = *std::find_if(tables_.begin(), tables_.end(),
                                           [&](const Table& data) { return data.name == query.table; });
        const auto column = table.columnIndex(query.column);
        Cells cells;
        for (const Cells& row : table.rows)
            if (query.where.empty() || row[table.columnIndex(query.where)] == query.equals)
                cells.push_back(row[column]);
        return cells;
    }

    Test conditionTest(const TFilterCond& condition) const {
        std::vector<Cells> values;
        for (ConditionValue& value : valuesOf(condition)) {
            Cells& cells = values.emplace_back();
            if (!panel_.GetStrict() && value.texts.empty() && !isTextType(value.type))
                value.texts.push_back(""); // an empty list is an empty value
            for (const std::string& text : value.texts)
                if (value.kind == vkSubQuery)
                    cells = subQueryCells(text);
                else
                    cells.push_back(meaningIn(condition, value.type, text));
        }
        if (condition.GetRowType() == frtSimpleCondition)
            return simpleTest(static_cast<const TSimpleCond&>(condition), values);
        const Predicate& predicate =
            entryOf(predicates, static_cast<const TCustomCond&>(condition).GetCondition()->GetSQLExpr());
        const Table& orders = dataOf(*model_.TableByName(tnName, "orders"));
        return [columns = columnReads(predicate.columns), values, &predicate, &orders](const JoinedRow& row) {
            return predicate.holds(readAll(columns, row), values, orders);
        };
    }

    // A day that a column of moments is compared with is the whole of it.
    Cell meaningIn(const TFilterCond& condition, TFieldType type, const std::string& text) const {
        const Cell meaning = meaningOf(type, text, panel_.GetStrict()).value();
        const bool isWholeDay = panel_.GetStrict() && condition.GetRowType() == frtSimpleCondition &&
                                type == ftDateTime && text.find(':') == std::string::npos;
        return isWholeDay ? truth::text(meaning).substr(0, 10) : meaning;
    }

    // A strict query finds "%" and "_" as they stand.
    Test likeTest(const Read& read, std::string pattern, const std::string& part) const {
        const bool strict = panel_.GetStrict();
        for (const char c : part) {
            if (strict && std::string_view("%_!").find(c) != std::string_view::npos)
                pattern += '!';
            pattern += c;
        }
        return [read, escape = strict ? '!' : engine_.likeEscape,
                pattern = pattern + "%"](const JoinedRow& row) { return like(read(row), pattern, escape); };
    }

    Test simpleTest(const TSimpleCond& condition, const std::vector<Cells>& values) const {
        static const std::map<std::string, std::string> signs = {
            {"Equal", "="},        {"NotEqual", "<>"},   {"LessThan", "<"},
            {"LessOrEqual", "<="}, {"GreaterThan", ">"}, {"GreaterOrEqual", ">="}};
        const Read read = fieldRead(*condition.GetField());
        const std::string& name = condition.GetOperator()->GetName();
        const bool negated = name.starts_with("Not") && name != "NotEqual";
        const std::string base = negated ? name.substr(3) : name;
        Test test;
        if (base == "IsNull")
            return [read](const JoinedRow& row) { return truthOf(isNull(read(row))); };
        const Cells list = values.at(0);
        const Cell first = list.empty() ? Cell() : list[0];
        if (const auto sign = signs.find(base); sign != signs.end())
            test = [read, sign = sign->second, first](const JoinedRow& row) {
                return compare(read(row), sign, first);
            };
        else if (base == "InList" || base == "InSubQuery")
            test = [read, list](const JoinedRow& row) { return in(read(row), list); };
        else if (base == "StartsWith" || base == "Contains")
            test = likeTest(read, base == "Contains" ? "%" : "", text(first));
        else if (base == "Between")
            test = [read, first, last = values.at(1).at(0)](const JoinedRow& row) {
                const Cell cell = read(row);
                return std::min(compare(cell, ">=", first), compare(cell, "<=", last));
            };
        else if (base == "InYear")
            test = [read, first](const JoinedRow& row) {
                const Cell cell = read(row);
                return compare(isNull(cell) ? cell : std::stod(text(cell).substr(0, 4)), "=", first);
            };
        else if (base == "EqualOrNull")
            test = [read, first](const JoinedRow& row) {
                const Cell cell = read(row);
                return isNull(cell) ? Truth::yes : compare(cell, "=", first);
            };
        else
            throw std::logic_error("no meaning known of the operator " + name);
        return negated ? [test](const JoinedRow& row) { return !test(row); } : test;
    }

    // --- Result fields.

    OutputColumn outputColumn(const TResultField& field) const {
        OutputColumn column{&entryOf(formulas, field.GetFormula()), {}, {}};
        for (const TDSField* const entry : field.GetFields()) {
            column.operands.push_back(fieldRead(*entry));
            for (Read& read : groupingReads(*entry))
                column.grouping.push_back(std::move(read));
        }
        return column;
    }

    // The sort order and the position of each.
    static std::vector<std::pair<int, int>> sortedColumns(const TRFieldList& fields) {
        std::vector<std::pair<int, int>> sorted;
        for (int i = 0; i < fields.Count(); ++i)
            if (fields.GetRField(i)->GetSorting() != stNoSort)
                sorted.emplace_back(fields.GetRField(i)->GetSortOrder(), i);
        std::sort(sorted.begin(), sorted.end());
        return sorted;
    }

    std::vector<Cells> outputRows(const TRFieldList& fields, const std::vector<JoinedRow>& rows) const {
        std::vector<OutputColumn> columns;
        bool grouped = false;
        for (int i = 0; i < fields.Count(); ++i) {
            columns.push_back(outputColumn(*fields.GetRField(i)));
            grouped = grouped || columns.back().formula->ofGroup;
        }
        return grouped ? groupedRows(columns, rows) : plainRows(columns, rows);
    }

    std::vector<Cells> plainRows(const std::vector<OutputColumn>& columns,
                                 const std::vector<JoinedRow>& rows) const {
        std::vector<Cells> output;
        for (const JoinedRow& row : rows) {
            Cells& cells = output.emplace_back();
            for (const OutputColumn& column : columns)
                cells.push_back(column.formula->ofRow(readAll(column.operands, row)));
        }
        return output;
    }

    std::vector<Cells> groupedRows(const std::vector<OutputColumn>& columns,
                                   const std::vector<JoinedRow>& rows) const {
        std::map<std::string, std::vector<const JoinedRow*>> groups;
        std::vector<Read> grouping;
        for (const OutputColumn& column : columns)
            if (!column.formula->ofGroup)
                grouping.insert(grouping.end(), column.grouping.begin(), column.grouping.end());
        if (grouping.empty())
            groups[""]; // without groups there is one row, whatever there is to add up
        for (const JoinedRow& row : rows)
            groups[show(readAll(grouping, row))].push_back(&row);

        std::vector<Cells> output;
        for (const auto& [key, members] : groups) {
            Cells& cells = output.emplace_back();
            for (const OutputColumn& column : columns) {
                std::vector<Cells> operands;
                for (const JoinedRow* const row : members)
                    operands.push_back(readAll(column.operands, *row));
                cells.push_back(column.formula->ofGroup
                                    ? column.formula->ofGroup(operands)
                                    : column.formula->ofRow(operands.empty() ? Cells() : operands[0]));
            }
        }
        return output;
    }

    Cells allColumns(const std::vector<FromTable>& from, const JoinedRow& row) const {
        Cells cells;
        for (const FromTable& entry : from) {
            const Cells* const record = row[indexOf(*entry.table)];
            const Cells nulls(dataOf(*entry.table).columns.size());
            cells.insert(cells.end(), (record ? *record : nulls).begin(), (record ? *record : nulls).end());
        }
        return cells;
    }

    const TVQueryPanel& panel_;
    const TVCustomDBStructure& model_;
    const std::vector<Table>& tables_;
    const Engine& engine_;
};

} // namespace

Answer answerOf(const TVQueryPanel& panel, const std::vector<Table>& tables, const Engine& engine) {
    return Evaluator(panel, tables, engine).answer();
}

} // namespace lumora::truth
