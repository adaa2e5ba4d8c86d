// The text with which a condition's constant value stands in a statement.
#pragma once

#include "lumora/model/Lmglobal.h"
#include "lumora/model/date_storage.h"
#include "lumora/model/sql_template.h"
#include "lumora/platform/field_types.h"
#include "lumora/statement/dialects/dialect.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TFilterCond;
class TVCustomDBStructure;

// Writes values by the model's types and formats and the query's dialect; in a strict query it checks them
// first.
class TValueWriter {
public:
    TValueWriter(const TVCustomDBStructure& structure, const TDialect& dialect, bool strict)
        : structure_(structure), dialect_(dialect), strict_(strict) {}

    // Whether values of the type stand in quotes. A strict query quotes whatever it does not check.
    bool IsQuoted(TFieldType type) const;
    // A value of a condition, looked up once.
    struct TValue {
        const TFilterCond& Condition;
        std::string_view Text;
        TValueKind Kind;
        TFieldType Type;
        TDateStorage Storage; // of the column; dsAsType in a plain query
        bool IsSingle;        // the column is of single precision; never in a plain query
    };
    TValue ValueOf(const TFilterCond& condition, int value) const;

    // How a value that is no parameter enters the condition's template.
    TValueEntry EntryOf(const TFilterCond& condition, int value) const;
    // Whether a value can't stand between quotes of the template, and must bring a literal of its own.
    bool NeedsOwnLiteral(const TValue& value) const;
    // Appends a value. `quotes`: the template has none around it, so a single value of a quoted type brings
    // its own. EVQueryPanelError for a value that a strict query refuses, EConvertError for a date that is
    // none.
    void Append(std::string& out, const TValue& value, bool quotes) const;

private:
    // Whether values of the type, or of the column, are written as literals of their own.
    bool HasLiteral(TFieldType type, TDateStorage storage) const;
    void AppendDate(std::string& out, const TValue& value, std::string_view text, bool quotes) const;
    void AppendStoredDate(std::string& out, const TValue& value, std::string_view text) const;
    void AppendItem(std::string& out, const TValue& value, std::string_view text, bool quotes) const;
    void AppendList(std::string& out, const TValue& value) const;

    const TVCustomDBStructure& structure_;
    const TDialect& dialect_;
    bool strict_;
};

// Whether a condition compares a column of single precision: an ftFloat field of size 4.
bool ComparesSingle(const TFilterCond& condition, TFieldType type);

// The items of a list value: split at commas outside double quotes, blanks around an item dropped; an item in
// double quotes loses them, and a doubled double quote inside becomes one.
std::vector<std::string> SplitListValue(std::string_view text);

} // namespace lumora
