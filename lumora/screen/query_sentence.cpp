#include "lumora/screen/query_sentence.h"

#include "lumora/model/structure.h"
#include "lumora/platform/ascii.h"
#include "lumora/query/column_total.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/query/query_result.h"
#include "lumora/screen/query_screen.h"
#include "lumora/screen/row_words.h"
#include "lumora/screen/screen_words.h"
#include "lumora/support/messages.h"

#include <algorithm>
#include <vector>

namespace lumora {

namespace {

using TWords = std::vector<std::string>;

std::string Joined(const TWords& words, std::string_view between) {
    std::string text;
    for (const std::string& word : words)
        text.append(text.empty() ? "" : between).append(word);
    return text;
}

// "a", "a and b", "a, b and c".
std::string Enumeration(TWords words) {
    if (words.size() < 2)
        return Joined(words, {});
    const std::string last = std::move(words.back());
    words.pop_back();
    return FormatText(Message(msgLastOfList), {Joined(words, ", "), last});
}

void AddOnce(TWords& words, const std::string& word) {
    if (std::find(words.begin(), words.end(), word) == words.end())
        words.push_back(word);
}

// --- Columns.

class TColumnTeller {
public:
    explicit TColumnTeller(const TRFieldList& columns) : columns_(columns) {
        for (int i = 0; i < columns.Count(); ++i)
            groups_ = groups_ || Column(i).GetAgregate() || Column(i).GetGrouping() == cgKey;
    }

    // A row for each group comes once by itself, if what makes the groups is what is shown.
    bool ShowsGroupsOnce() const {
        for (int i = 0; groups_ && i < columns_.Count(); ++i) {
            const bool isWhole = TotalOf(Column(i)) == ctValue || Column(i).GetGrouping() == cgKey;
            if (IsGroup(Column(i)) && (Column(i).GetHidden() || !isWhole))
                return false;
        }
        return groups_;
    }

    // "Customer and City", "the sum of Price for each City".
    std::string Shown() const {
        TWords shown;
        TWords groups;
        const bool once = ShowsGroupsOnce();
        for (int i = 0; i < columns_.Count(); ++i) {
            const bool isGroup = IsGroup(Column(i));
            if (isGroup)
                AddGroup(groups, Column(i));
            if (!Column(i).GetHidden() && (!isGroup || !once))
                shown.push_back(Words(Column(i)));
        }
        if (shown.empty()) // groups without totals
            return Enumeration(std::move(groups));
        const std::string text = Enumeration(std::move(shown));
        return groups.empty() ? text
                              : FormatText(Message(msgForEach), {text, Enumeration(std::move(groups))});
    }

    // "City and the number of Orders descending".
    std::string Sorting() const {
        std::vector<const TResultField*> sorted;
        for (int i = 0; i < columns_.Count(); ++i)
            if (Column(i).GetSorting() != stNoSort)
                sorted.push_back(&Column(i));
        std::stable_sort(sorted.begin(), sorted.end(), [](const TResultField* a, const TResultField* b) {
            return a->GetSortOrder() < b->GetSortOrder();
        });
        TWords words;
        for (const TResultField* const column : sorted) {
            const bool isFormula = TotalOf(*column) == ctFormula;
            const std::string name = isFormula ? column->GetCaption() : Words(*column);
            words.push_back(column->GetSorting() == stDescending ? FormatText(Message(msgDescending), {name})
                                                                 : name);
        }
        return Enumeration(std::move(words));
    }

private:
    const TResultField& Column(int index) const { return *columns_.GetRField(index); }

    bool IsGroup(const TResultField& column) const {
        return groups_ && !column.GetAgregate() && column.GetGrouping() != cgAny;
    }

    // A formula of one value is as its caption says; one with a total says how it counts.
    std::string Words(const TResultField& column) const {
        const TColumnTotal total = TotalOf(column);
        if (groups_ && column.GetGrouping() == cgAny)
            return FormatText(Message(msgAnyOneOf), {column.GetCaption()});
        if (total == ctValue || (total == ctFormula && !column.GetAgregate()))
            return column.GetCaption();
        if (total == ctFormula)
            return FormatText(Message(msgExplained), {column.GetCaption(), FormulaWords(column)});
        const std::string words = TotalWords(total, *column.GetFields().front());
        return HasOwnCaption(column) ? words
                                     : FormatText(Message(msgExplained), {words, column.GetCaption()});
    }

    std::string TotalWords(TColumnTotal total, const TDSField& field) const {
        static constexpr TMessageId words[] = {msgCountWords,   msgCountWords, msgCountWords,   msgSumWords,
                                               msgAverageWords, msgLeastWords, msgGreatestWords};
        const bool counts = total == ctCount || total == ctCountDifferent;
        return FormatText(Message(words[total]), {counts ? CountedWords(total, field) : FieldWords(field)});
    }

    // "Price", or "Price of Orders" where columns have several fields of that caption.
    std::string FieldWords(const TDSField& field) const {
        bool isOnly = true;
        for (int i = 0; i < columns_.Count(); ++i)
            for (const TDSField* const other : Column(i).GetFields())
                isOnly = isOnly && (other == &field || other->GetDisplayName() != field.GetDisplayName());
        return isOnly || !field.GetTable()
                   ? field.GetDisplayName()
                   : FormatText(Message(msgPartOf),
                                {field.GetDisplayName(), field.GetTable()->GetDisplayName()});
    }

    static std::string FormulaWords(const TResultField& column) {
        if (column.GetFields().empty() && SameText(column.GetFormula(), "count(*)"))
            return FormatText(Message(msgCountWords), {Message(msgRecordsWord)});
        std::string words = column.GetExpression();
        std::erase_if(words, [](char c) { return c == '{' || c == '}'; });
        return ScreenCaption(words);
    }

    // Groups are made by the fields, whatever a formula makes of them, unless the column says otherwise.
    static void AddGroup(TWords& groups, const TResultField& column) {
        if (TotalOf(column) == ctValue || column.GetGrouping() == cgKey)
            return AddOnce(groups, column.GetCaption());
        for (const TDSField* const field : column.GetFields())
            AddOnce(groups, field->GetDisplayName());
    }

    const TRFieldList& columns_;
    bool groups_ = false; // a column is a total
};

// --- Tables, and what their links leave out.

class TTableTeller {
public:
    explicit TTableTeller(const TRTableList& tables) : tables_(tables) {}

    std::string All() const {
        TWords names;
        for (int i = 0; i < tables_.Count(); ++i)
            AddOnce(names, Name(*tables_.GetItem(i).Table));
        return Enumeration(std::move(names));
    }

    // "only Orders with Customers and Countries"; "also Customers without Orders".
    TWords LeftOut() const {
        std::vector<const TDSTable*> needed;
        TWords parts;
        for (int i = 1; i < tables_.Count(); ++i) {
            const TResultTable& item = tables_.GetItem(i);
            if (!item.Link || item.Kind == jkLeft || item.Kind == jkFull)
                continue;
            Need(needed, item);
            if (item.Kind == jkRight)
                parts.push_back(FormatText(Message(msgAlsoWithout),
                                           {Name(*item.Table), Name(*item.Link->Neighbour(item.Table))}));
        }
        TWords names;
        for (const TDSTable* const table : needed)
            AddOnce(names, Name(*table));
        if (!names.empty())
            parts.insert(parts.begin(), FormatText(Message(msgOnlyWith), {Name(*tables_.GetItem(0).Table),
                                                                          Enumeration(std::move(names))}));
        return parts;
    }

private:
    static const std::string& Name(const TDSTable& table) { return table.GetDisplayName(); }

    // The table, and those through which it is reached from the first: without them there is nothing to fit.
    void Need(std::vector<const TDSTable*>& needed, const TResultTable& item) const {
        const TDSTable* const first = tables_.GetItem(0).Table;
        const int from = tables_.IndexOf(item.Link->Neighbour(item.Table));
        if (from > 0 && tables_.GetItem(from).Table != first)
            Need(needed, tables_.GetItem(from));
        if (std::find(needed.begin(), needed.end(), item.Table) == needed.end())
            needed.push_back(item.Table);
    }

    const TRTableList& tables_;
};

std::string ShowSentence(const TVQuery& query) {
    const TQueryResult& result = query.GetQResult();
    const TRFieldList& columns = result.GetResultFields();
    const TColumnTeller columnTeller(columns);
    const bool hasTables = result.IsCurrent() && !result.GetResultTables().Empty();
    const TTableTeller tables(result.GetResultTables());
    const bool whole = columns.JustSorting || columns.Count() == 0;
    const std::string shown = !whole      ? columnTeller.Shown()
                              : hasTables ? FormatText(Message(msgAllFieldsOf), {tables.All()})
                                          : Message(msgAllFields);
    TWords parts = {FormatText(Message(msgShow), {shown})};
    if (query.GetSQLOptions().Contains(soSelectDistinct) && (whole || !columnTeller.ShowsGroupsOnce()))
        parts.push_back(Message(msgEachRowOnce));
    if (hasTables)
        for (std::string& part : tables.LeftOut())
            parts.push_back(std::move(part));
    if (const std::string sorting = columnTeller.Sorting(); !sorting.empty())
        parts.push_back(FormatText(Message(msgSortedBy), {sorting}));
    return Joined(parts, ", ") + '.';
}

// --- Conditions.

// With prompts: a row that lacks its value doesn't pass for a whole one.
std::string RowSaid(const TQueryScreen& screen, const TFilterRow& row) {
    TWords words;
    for (const TRowWord& word : RowWords(screen, row, true))
        words.push_back(word.Caption);
    return Joined(words, " ");
}

// "a; b; any of the following apply (c; d)".
std::string RowsOf(const TQueryScreen& screen, const TFilterBracket& bracket) {
    TWords words;
    for (int i = 0; i < bracket.GetRowCount(); ++i) {
        const TFilterRow& row = *bracket.GetRow(i);
        if (!row.GetEnabled())
            continue;
        const std::string text = RowSaid(screen, row);
        if (row.GetRowType() != frtBracket)
            words.push_back(text);
        else if (const std::string below = RowsOf(screen, static_cast<const TFilterBracket&>(row));
                 !below.empty())
            words.push_back(FormatText(Message(msgExplained), {text, below}));
    }
    return Joined(words, "; ");
}

} // namespace

std::string ConditionSentence(const TQueryScreen& screen) {
    const TFilterBracket* const root = screen.GetQuery().GetRootBracket();
    const std::string rows = root && root->GetEnabled() ? RowsOf(screen, *root) : std::string();
    return rows.empty() ? rows : RowSaid(screen, *root) + ": " + rows + '.';
}

std::string QuerySentence(const TQueryScreen& screen) {
    const std::string conditions = ConditionSentence(screen);
    const TVQuery& query = screen.GetQuery();
    if (conditions.empty() && query.GetQResult().GetResultFields().Count() == 0)
        return {};
    return ShowSentence(query) + ' ' + (conditions.empty() ? Message(msgChooseAll) + '.' : conditions);
}

} // namespace lumora
