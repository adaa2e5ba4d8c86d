// A data model of one table, and queries on it, for tests that run them.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace lumora::tests {

// Fields by name and the number of their type. Operators: Equal, Least, Contains, and Touch, which calls a
// function of the database.
inline std::string runModel(const std::string& table,
                            const std::vector<std::pair<std::string, int>>& fields) {
    std::string text =
        "[Main]\nVersion=3.5\nOperatCount=4\nTableCount=1\nFieldCount=" + std::to_string(fields.size()) +
        "\nCondCount=0\nFieldGroups=0\nDefaultMainTable=\nRootFieldsFirst=1\n";
    const std::pair<const char*, const char*> operators[] = {{"Equal", "@f = '@1'"},
                                                             {"Least", "@f >= '@1'"},
                                                             {"Contains", "@f like '%@1%'"},
                                                             {"Touch", "touch(@f) = '@1'"}};
    int n = 0;
    for (const auto& [name, sql] : operators)
        text.append("[Operator:" + std::to_string(++n) + "]\nName=")
            .append(name)
            .append("\nDisplayName=")
            .append(name)
            .append("\nSQLName=")
            .append(sql)
            .append("\nValFormat=\nExprType=SameAsField\nAppliedTypes=\n"
                    "ValueKind=vkScalar\n");
    text += "[Table:1]\nName=" + table + "\nDisplayName=Things\nAlias=things\nQuoted=0\nHints=\nLinks=\n";
    n = 0;
    for (const auto& [name, type] : fields) {
        const std::string id = std::to_string(++n);
        text += "[Field:" + id + "]\nID=" + id + "\nKind=vfkData\nFieldExpr=" + name +
                "\nDisplayName=" + name +
                "\nTableAlias=things\nEditType=0\nFieldType=" + std::to_string(type) +
                "\nFieldSize=0\nQuoted=0\nUIC=1\nUIR=1\nOperators=Equal,Least,Contains,Touch\n";
    }
    return text;
}

struct RunCondition {
    int field;
    std::string op;
    std::string value;
    bool isParam = false;
};

// Shows the fields; without DISTINCT and sorting.
inline std::string runQueryText(const std::vector<int>& fields,
                                const std::vector<RunCondition>& conditions = {}) {
    std::string text = "[Main]\nVersion=3.5\nOptions=\n[RFields]\nCount=" + std::to_string(fields.size()) +
                       "\nVersion=3.5\nJustSorting=0\n";
    for (std::size_t i = 0; i < fields.size(); ++i)
        text += "[RField" + std::to_string(i + 1) + "]\nFormula=@1\nFields=" + std::to_string(fields[i]) +
                "\nAlias=\nCaption=c\nSorting=0\nSortOrder=0\n";
    text += "[Row]\nEnabled=1\nRowType=1\nLinkType=0\nRowCount=" + std::to_string(conditions.size()) + "\n";
    for (std::size_t i = 0; i < conditions.size(); ++i)
        text += "[Row" + std::to_string(i + 1) +
                ".]\nRowType=0\nEnabled=1\nFieldID=" + std::to_string(conditions[i].field) +
                "\nParam1=" + (conditions[i].isParam ? "1" : "0") +
                "\nParam2=0\nOperator=" + conditions[i].op + "\nValue1=" + conditions[i].value +
                "\nValue2=\nVFormat1=@v\n";
    return text;
}

} // namespace lumora::tests
