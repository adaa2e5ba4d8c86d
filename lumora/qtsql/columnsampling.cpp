#include "lumora/qtsql/columnsampling.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/captions.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace lumora {

namespace {

using namespace Qt::StringLiterals;

constexpr std::int64_t smallTable = 20000; // rows

// What kinds of values there are, told by SQL: "%1" is the rows. Days as numbers are those of which each
// digit is right (19960708).
const QString classification = uR"(select kind, count(*), min(x), max(x) from (select x, case typeof(x)
 when 'text' then case
  when x glob '[0-9][0-9][0-9][0-9]-[0-1][0-9]-[0-3][0-9]' then 'day'
  when x glob '[0-9][0-9][0-9][0-9]-[0-1][0-9]-[0-3][0-9][ T][0-2][0-9]:[0-5][0-9]*' then case
   when x glob '?????????? ??:??:[0-5][0-9]' then 'moment'
   when x glob '?????????? ??:??:[0-5][0-9].[0-9][0-9][0-9]' then 'fraction'
   when x glob '??????????T??:??:[0-5][0-9]' then 'momentT'
   else 'other moment' end
  else 'text' end
 when 'integer' then case
  when x between 10000101 and 99991231 and x % 100 between 1 and 31 and x / 100 % 100 between 1 and 12 then 'digits'
  else 'number' end
 when 'real' then 'real'
 else 'bytes' end as kind from (%1)) group by kind)"_s;

// What was found in a column.
class Findings {
public:
    explicit Findings(const BoundedQueries::Rows& rows) {
        for (const QList<QVariant>& row : rows) {
            const QString kind = row[0].toString();
            counts_[kind] = row[1].toLongLong();
            total_ += row[1].toLongLong();
            if (isNumber(kind)) {
                least_ = std::min(least_, row[2].toDouble());
                greatest_ = std::max(greatest_, row[3].toDouble());
            }
        }
    }

    qint64 total() const { return total_; }
    qint64 count(const QString& kind) const {
        const auto found = counts_.find(kind);
        return found == counts_.end() ? 0 : found->second;
    }
    qint64 moments() const {
        return count(u"moment"_s) + count(u"fraction"_s) + count(u"momentT"_s) + count(u"other moment"_s);
    }
    qint64 dates() const { return count(u"day"_s) + moments(); }
    qint64 numbers() const { return count(u"number"_s) + count(u"digits"_s) + count(u"real"_s); }
    bool areNumbersWithin(double least, double greatest) const {
        return least_ >= least && greatest_ <= greatest;
    }

    TDateStorage textStorage(TFieldType type) const {
        static const std::pair<QString, TDateStorage> forms[] = {{u"day"_s, dsDay},
                                                                 {u"moment"_s, dsMoment},
                                                                 {u"fraction"_s, dsMomentFraction},
                                                                 {u"momentT"_s, dsMomentT}};
        for (const auto& [kind, storage] : forms)
            if (count(kind) == dates()) {
                const bool isUsual = storage == (type == ftDate ? dsDay : dsMoment);
                return isUsual ? dsAsType : storage;
            }
        return dsMixedText;
    }

    // dsAsType: no moments, but plain numbers.
    TDateStorage numberStorage() const {
        if (count(u"digits"_s) == numbers() || areNumbersWithin(0, 9999)) // 19960708, a year
            return dsAsType;
        if (areNumbersWithin(1721059, 5373485)) // the years 0 to 9999
            return dsJulianDay;
        constexpr double laterSeconds = 1e11; // the year 5138
        return areNumbersWithin(-laterSeconds, laterSeconds) ? dsEpochSeconds : dsEpochMilliseconds;
    }

private:
    static bool isNumber(const QString& kind) {
        return kind == u"number" || kind == u"digits" || kind == u"real";
    }

    std::map<QString, qint64> counts_;
    qint64 total_ = 0;
    double least_ = std::numeric_limits<double>::max();
    double greatest_ = std::numeric_limits<double>::lowest();
};

class DateFinder {
public:
    DateFinder(DatabaseContents& contents, BoundedQueries& queries)
        : contents_(contents), queries_(queries) {}

    void look(TableKind kind) {
        for (SourceTable& table : contents_.tables)
            for (SourceColumn& column : table.columns)
                if (table.info.kind == kind && isCandidate(column))
                    look(table, column);
    }

private:
    bool isCandidate(const SourceColumn& column) const {
        if (!column.hasType || column.type == ftDate || column.type == ftDateTime || column.type == ftBoolean)
            return true;
        return column.type == ftString && column.choices.empty() && !contents_.keyOf(column) &&
               soundsLikeDate(column.name);
    }

    // A text that may well be something else is looked at only when its name speaks of days.
    static bool soundsLikeDate(std::string_view name) {
        static constexpr std::string_view words[] = {
            "date",  "day",     "time",    "timestamp", "datetime", "when",  "at",       "on",
            "since", "until",   "from",    "to",        "start",    "end",   "birthday", "birthdate",
            "dob",   "created", "updated", "modified",  "changed",  "begin", "expires"};
        const std::string caption = readableCaption(name);
        for (const std::string_view part : SplitText(caption, ' ')) {
            const std::string word = LowerAscii(part);
            if (word.ends_with("date") ||
                std::find(std::begin(words), std::end(words), word) != std::end(words))
                return true;
        }
        return false;
    }

    // A small table whole; otherwise both ends, in which no more than some rows are looked through for
    // values.
    QString rowsOf(const SourceTable& table, const SourceColumn& column) const {
        const QString name = QString::fromStdString(nameInStatement(contents_.engine, table));
        const QString x = QString::fromStdString(nameInStatement(contents_.engine, column));
        if (table.info.rowCount >= 0 && table.info.rowCount <= smallTable)
            return u"select %1 as x from %2 where %1 is not null"_s.arg(x, name);
        const QString end = u"select * from (select x from (select %1 as x from %2%3 limit 20000)"
                            " where x is not null limit 200)"_s;
        if (table.info.rowCount < 0) // no row numbers
            return end.arg(x, name, QString());
        return end.arg(x, name, u" order by rowid"_s) + u" union all "_s +
               end.arg(x, name, u" order by rowid desc"_s);
    }

    void look(SourceTable& table, SourceColumn& column) {
        const auto rows = queries_.ask(classification.arg(rowsOf(table, column)));
        if (!rows)
            return;
        const Findings found(*rows);
        if (found.total() == 0)
            return;
        if (!column.hasType)
            typeByValues(column, found, table);
        else if (column.type == ftString)
            typeText(column, found);
        else if (column.type == ftBoolean)
            typeTruth(column, found, table);
        else
            typeDate(column, found, table);
    }

    void typeText(SourceColumn& column, const Findings& found) const {
        if (found.dates() == found.total())
            makeDate(column, found);
    }

    // Truth values are written as 1 and 0, which no text equals.
    void typeTruth(SourceColumn& column, const Findings& found, const SourceTable& table) {
        if (found.numbers() == found.total())
            return;
        column.type = ftString;
        column.comparison = Comparison::Text;
        if (found.numbers() > 0)
            remark(table, column, "holds numbers and texts; numbers are not found by conditions on texts");
    }

    static void makeDate(SourceColumn& column, const Findings& found) {
        if (column.type != ftDateTime)
            column.type = found.moments() > 0 ? ftDateTime : ftDate;
        column.storage = found.textStorage(column.type);
        column.size = 0;
        column.comparison = Comparison::Value;
    }

    void typeDate(SourceColumn& column, const Findings& found, const SourceTable& table) {
        qint64 known = 0;
        if (found.dates() * 2 > found.total()) {
            known = found.dates();
            makeDate(column, found);
        } else if (found.numbers() * 2 > found.total()) {
            known = found.numbers();
            typeNumber(column, found, table);
        } else {
            column.type = ftString;
            column.comparison = Comparison::Text;
            remark(table, column, "holds days in a form that has no order; it is compared as a text");
            return;
        }
        if (known < found.total())
            remark(table, column,
                   "holds values that are no days or are kept in another form; conditions may take them "
                   "wrongly");
    }

    void typeNumber(SourceColumn& column, const Findings& found, const SourceTable& table) {
        column.storage = found.numberStorage();
        if (column.storage != dsAsType) {
            column.type = ftDateTime;
            return;
        }
        column.type = found.count(u"real"_s) > 0 ? ftFloat : ftInteger;
        remark(table, column, "holds numbers, not days; it is compared as a number");
    }

    void typeByValues(SourceColumn& column, const Findings& found, const SourceTable& table) {
        const qint64 whole = found.numbers() - found.count(u"real"_s);
        constexpr double greatest = std::numeric_limits<std::int32_t>::max();
        if (found.dates() == found.total()) {
            makeDate(column, found);
        } else if (found.numbers() == found.total()) {
            const bool isShort = found.areNumbersWithin(-greatest, greatest);
            column.type = whole < found.total() ? ftFloat : isShort ? ftInteger : ftLargeint;
            column.comparison = Comparison::Value;
        } else if (found.count(u"bytes"_s) == found.total()) {
            column.type = ftBlob;
            column.comparison = Comparison::None;
        } else if (found.numbers() > 0) {
            remark(table, column, "holds numbers and texts; numbers are not found by conditions on texts");
        }
    }

    void remark(const SourceTable& table, const SourceColumn& column, const char* what) {
        contents_.remarks.push_back("Column \"" + column.name + "\" of table \"" + table.name + "\" " + what);
    }

    DatabaseContents& contents_;
    BoundedQueries& queries_;
};

} // namespace

void lookAtDates(DatabaseContents& contents, TableKind kind, BoundedQueries& queries) {
    if (contents.engine == Engine::Sqlite)
        DateFinder(contents, queries).look(kind);
}

} // namespace lumora
