// The text with which a condition's constant value stands in a statement.
#pragma once

#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

// Writes values by the model's types and formats and the query's syntax; in a strict query it checks them
// first.
class TValueWriter {
public:
    TValueWriter(const TVCustomDBStructure& structure, TSQLSyntax syntax, bool strict)
        : structure_(structure), syntax_(syntax), strict_(strict) {}

    // Whether values of the type stand in quotes. A strict query quotes whatever it does not check.
    bool IsQuoted(TFieldType type) const;
    // How value k enters the condition's template.
    TValueEntry EntryOf(const TFilterCond& condition, int value) const;
    // Appends value k. `quotes`: the template has none around it, so a single value of a quoted type brings
    // its own. EVQueryPanelError for a value that a strict query refuses, EConvertError for a date that is
    // none.
    void Append(std::string& out, const TFilterCond& condition, int value, bool quotes) const;

private:
    bool IsOracleLiteral(TFieldType type) const {
        return strict_ && syntax_ == ssOracle && IsDateOrTime(type);
    }
    void AppendItem(std::string& out, const TFilterCond& condition, TFieldType type, std::string_view text,
                    bool quotes) const;
    void AppendList(std::string& out, const TFilterCond& condition, TFieldType type,
                    std::string_view text) const;

    const TVCustomDBStructure& structure_;
    TSQLSyntax syntax_;
    bool strict_;
};

// The items of a list value: split at commas outside double quotes, blanks around an item dropped; an item in
// double quotes loses them, and a doubled double quote inside becomes one.
std::vector<std::string> SplitListValue(std::string_view text);

} // namespace lumora
