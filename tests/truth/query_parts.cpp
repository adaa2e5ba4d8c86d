#include "tests/truth/reference.h"

#include <algorithm>
#include <stdexcept>

namespace lumora::truth {

namespace {

void collectLive(const TFilterBracket& bracket, std::vector<LiveCondition>& found) {
    for (int i = 0; i < bracket.GetRowCount(); ++i) {
        TFilterRow* const row = bracket.GetRow(i);
        if (!row->GetEnabled())
            continue;
        if (row->GetRowType() == frtBracket)
            collectLive(static_cast<const TFilterBracket&>(*row), found);
        else
            found.push_back({static_cast<TFilterCond*>(row), &bracket});
    }
}

} // namespace

std::vector<LiveCondition> liveConditions(const TVQueryPanel& panel) {
    std::vector<LiveCondition> found;
    if (panel.GetRootBracket()->GetEnabled())
        collectLive(*panel.GetRootBracket(), found);
    return found;
}

std::vector<ConditionValue> valuesOf(const TFilterCond& condition) {
    std::vector<ConditionValue> values;
    if (condition.GetRowType() == frtSimpleCondition) {
        const auto& simple = static_cast<const TSimpleCond&>(condition);
        const TDSOperator& op = *simple.GetOperator();
        const TFieldType type = op.ExprType == ftUnknown ? simple.GetField()->FieldType : op.ExprType;
        for (const char* const place : {"@1", "@2"})
            if (op.GetSQLName().find(place) != std::string::npos)
                values.push_back({type, op.ValueKind, {}});
    } else {
        for (const TDSValue& value : static_cast<const TCustomCond&>(condition).GetCondition()->Values)
            values.push_back({value.GetDataType(), value.ValueKind, {}});
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string& text = condition.GetValue(static_cast<int>(i) + 1);
        values[i].texts = values[i].kind == vkList ? listItems(text) : std::vector<std::string>{text};
    }
    return values;
}

const TDSTable* otherEnd(const TDSLink& link, const TDSTable& table) {
    return link.Table1 == &table ? link.Table2 : link.Table1;
}

namespace {

const TDSLink* firstLink(const TDSTable& from, const TDSTable& to) {
    for (const TDSLink* const link : from.GetLinks())
        if (otherEnd(*link, from) == &to)
            return link;
    throw std::logic_error("no link");
}

// The shortest chain; among equals the one whose links came first.
std::vector<const TDSTable*> path(const TDSTable& from, const TDSTable& to) {
    std::vector<std::vector<const TDSTable*>> chains = {{&from}};
    for (std::size_t i = 0; i < chains.size(); ++i)
        for (const TDSLink* const link : chains[i].back()->GetLinks()) {
            const TDSTable* const next = otherEnd(*link, *chains[i].back());
            if (std::find(chains[i].begin(), chains[i].end(), next) != chains[i].end())
                continue;
            chains.push_back(chains[i]);
            chains.back().push_back(next);
            if (next == &to)
                return chains.back();
        }
    throw std::logic_error("no path");
}

// A table joins right behind the one that its link leads to. Chains begin at the first table.
void addTable(std::vector<FromTable>& tables, const TDSTable& table) {
    const auto find = [&](const TDSTable* wanted) {
        return std::find_if(tables.begin(), tables.end(),
                            [&](const FromTable& t) { return t.table == wanted; });
    };
    if (tables.empty())
        tables.push_back({&table, nullptr});
    if (find(&table) != tables.end())
        return;
    const std::vector<const TDSTable*> chain = path(*tables.front().table, table);
    for (std::size_t i = 1; i < chain.size(); ++i)
        if (find(chain[i]) == tables.end())
            tables.insert(find(chain[i - 1]) + 1, {chain[i], firstLink(*chain[i - 1], *chain[i])});
}

} // namespace

std::vector<FromTable> fromTables(const TVQueryPanel& panel) {
    std::vector<FromTable> tables;
    if (!panel.GetMainTableName().empty())
        addTable(tables, *panel.GetDbStruct()->TableByName(tnName, panel.GetMainTableName()));
    const TRFieldList& fields = panel.GetQResult().GetResultFields();
    for (int i = 0; i < fields.Count(); ++i)
        for (const TDSField* const field : fields.GetRField(i)->GetFields())
            for (const TDSTable* const table : field->GetTables())
                addTable(tables, *table);
    for (const LiveCondition& live : liveConditions(panel))
        for (const TDSTable* const table : live.condition->GetTables())
            addTable(tables, *table);
    return tables;
}

} // namespace lumora::truth
