#include "lumora/qtsql/valuelists.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/filledcaptions.h"
#include "lumora/statement/dialects/dialect.h"

#include <algorithm>
#include <map>

namespace lumora {

namespace {

constexpr std::int64_t mostRecords = 1000;  // of a table from whose records one is chosen
constexpr std::int64_t mostValues = 50;     // different ones, of a text
constexpr std::int64_t longestText = 40;    // characters
constexpr std::int64_t largeTable = 100000; // rows that are not gone through without an index
constexpr std::int64_t sampleSize = 20000;  // rows in which different values are looked for

class ListFinder {
public:
    ListFinder(DatabaseContents& contents, BoundedQueries& queries)
        : contents_(contents),
          queries_(queries),
          dialect_(EffectiveDialect(dialectOf(contents.engine), ssSQL2, true)) {}

    void find() {
        for (SourceTable& table : contents_.tables)
            for (SourceColumn& column : table.columns)
                if (column.choices.empty() && column.comparison != Comparison::None)
                    find(table, column);
    }

private:
    void find(const SourceTable& table, SourceColumn& column) {
        if (const ForeignKey* const key = contents_.keyOf(column)) {
            column.listSQL = recordList(*key);
            column.isReference = !column.listSQL.empty();
        } else if (mayHaveFewValues(table, column) && hasFewValues(table, column)) {
            const std::string name = nameOf(column);
            column.listSQL = "select distinct " + name + ", " + name + " from " + nameOf(table) + " where " +
                             name + " <> '' order by 1";
        }
    }

    std::string nameOf(const SourceTable& table) const { return nameInStatement(contents_.engine, table); }
    std::string nameOf(const SourceColumn& column) const { return nameInStatement(contents_.engine, column); }

    // The numbers of the first row; empty when there is none.
    std::vector<std::int64_t> askNumbers(const std::string& statement) {
        std::vector<std::int64_t> numbers;
        if (const auto rows = queries_.ask(QString::fromStdString(statement)); rows && !rows->empty())
            for (const QVariant& value : rows->front())
                numbers.push_back(value.toLongLong());
        return numbers;
    }

    std::string limited(const std::string& select, std::int64_t rows) const {
        return select + ' ' + FillPattern(dialect_.Limit, {std::to_string(rows)});
    }

    // --- Records of another table.

    // Empty when there are too many, or nothing to call them by.
    const std::string& recordList(const ForeignKey& key) {
        const auto [known, isNew] = recordLists_.try_emplace({key.referencedTable, key.referencedColumns[0]});
        if (isNew)
            known->second = makeRecordList(*contents_.table(key.referencedTable), key.referencedColumns[0]);
        return known->second;
    }

    std::string makeRecordList(const SourceTable& table, const std::string& keyColumn) {
        const std::string caption = captionExpression(table);
        if (caption.empty())
            return {};
        const std::string key = nameOf(*table.column(keyColumn));
        const auto numbers =
            askNumbers("select count(*), count(caption), count(distinct lower(caption)) from (" +
                       limited("select " + caption + " as caption from " + nameOf(table), mostRecords + 1) +
                       ") records");
        if (numbers.size() < 3 || numbers[0] == 0 || numbers[0] > mostRecords)
            return {};
        const std::string shown = numbers[1] == numbers[2] ? caption : withKey(caption, key);
        return "select " + key + ", " + shown + " from " + nameOf(table) + " order by 2";
    }

    // Where records share a name, only the key tells which one is meant.
    std::string withKey(const std::string& caption, const std::string& key) const {
        const std::string opened = FillPattern(dialect_.Concat, {caption, "' ('"});
        return FillPattern(dialect_.Concat, {FillPattern(dialect_.Concat, {opened, key}), "')'"});
    }

    std::string captionExpression(const SourceTable& table) const {
        const std::vector<std::string> columns = tellingColumns(contents_, table);
        if (columns.empty())
            return {};
        const std::string last = nameOf(*table.column(columns.back()));
        if (columns.size() == 1)
            return last;
        const std::string first = FillPattern(dialect_.Concat, {nameOf(*table.column(columns[0])), "' '"});
        return FillPattern(dialect_.Concat, {"coalesce(" + first + ", '')", last});
    }

    // --- Different values of a text.

    bool mayHaveFewValues(const SourceTable& table, const SourceColumn& column) {
        const bool isText = column.type == ftString || column.type == ftFixedChar;
        if (!isText || column.comparison != Comparison::Text || column.size > longestText ||
            isUnique(table, column))
            return false;
        if (table.info.kind == TableKind::View)
            return false;
        const bool isIndexed =
            std::any_of(table.info.indexedColumns.begin(), table.info.indexedColumns.end(),
                        [&](const std::string& name) { return SameText(name, column.name); });
        return isIndexed || !isLarge(table);
    }

    static bool isUnique(const SourceTable& table, const SourceColumn& column) {
        return std::any_of(table.info.uniqueKeys.begin(), table.info.uniqueKeys.end(),
                           [&](const auto& key) { return key.size() == 1 && SameText(key[0], column.name); });
    }

    // What the catalogue says may be too much, or nothing.
    bool isLarge(const SourceTable& table) {
        if (table.info.rowCount >= 0 && table.info.rowCount <= largeTable)
            return false;
        const auto [known, isNew] = large_.try_emplace(table.name, true);
        if (isNew) {
            const auto numbers =
                askNumbers("select count(*) from (" +
                           limited("select 1 as one from " + nameOf(table), largeTable + 1) + ") records");
            known->second = numbers.empty() || numbers[0] > largeTable;
        }
        return known->second;
    }

    bool hasFewValues(const SourceTable& table, const SourceColumn& column) {
        const std::string rows =
            limited("select " + nameOf(column) + " as x from " + nameOf(table), sampleSize);
        const std::string values =
            limited("select distinct x from (" + rows + ") records where x <> ''", mostValues + 1);
        const auto numbers = askNumbers("select count(*), max(length(x)) from (" + values + ") texts");
        return numbers.size() == 2 && numbers[0] > 0 && numbers[0] <= mostValues && numbers[1] <= longestText;
    }

    DatabaseContents& contents_;
    BoundedQueries& queries_;
    const TDialect& dialect_;
    std::map<std::pair<std::string, std::string>, std::string> recordLists_; // by table and key
    std::map<std::string, bool> large_;
};

} // namespace

void findValueLists(DatabaseContents& contents, BoundedQueries& queries) {
    ListFinder(contents, queries).find();
}

} // namespace lumora
