// SQL as people write it: what a strict reader takes gives the same rows when it is written again. The
// statements stand in tests/people_sql/, a database and its statements in each file: one a line, behind "!"
// those that are refused, with a part of the message.
#include "lumora/lumora.h"
#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/databaseconnection.h"
#include "lumora/qtsql/modelfiller.h"
#include "lumora/qtsql/queryrunner.h"
#include "lumora/querytext/query_text.h"
#include "lumora/reading/read_sql.h"
#include "lumora/support/Vstrings.h"
#include "tests/cli_process.h"
#include "tests/message_of.h"
#include "tests/test_application.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>

namespace lumora::tests {
namespace {

using TRows = std::vector<std::string>;

class PeopleSQL : public testing::Test {
protected:
    // Makes the database of the file and fills a model from it. Gives the file's statements.
    std::vector<std::string> Open(const std::string& name) {
        const std::string text = readFile(std::string(LUMORA_PEOPLE_SQL "/") + name + ".sql");
        const std::size_t at = text.find("-- statements\n");
        const std::string file = folder_ / (name + ".sqlite");
        database_ =
            std::make_unique<DatabaseConnection>(parseDatabase(file), DatabaseConnection::Access::Create);
        for (const std::string_view line : SplitText(std::string_view(text).substr(0, at), '\n'))
            if (!line.empty())
                execute(database_->connection(), QString::fromStdString(std::string(line)));
        Fill(file);
        std::vector<std::string> statements;
        for (const std::string_view line : SplitText(std::string_view(text).substr(at + 14), '\n'))
            if (!line.empty())
                statements.emplace_back(line);
        return statements;
    }

    // What the statement is read as, written again; what was refused instead.
    std::string Again(const std::string& sql, std::string& refusal) {
        TVQuery query(model_);
        query.SetStrict(true);
        query.SetDialect(sdSQLite);
        query.SetSaveSQLOptions(true);
        std::string again;
        refusal = MessageOf<EVLumoraError>([&] {
            ReadSQL(query, TStringList(sql));
            again = Statement(query);
        });
        if (!refusal.empty())
            return {};
        // The text keeps all of it.
        TStringList text;
        WriteQueryText(query, text);
        TVQuery copy(model_);
        copy.SetStrict(true);
        copy.SetDialect(sdSQLite);
        ReadQueryText(copy, text);
        EXPECT_EQ(Statement(copy), again) << sql << "\n" << text.GetText();
        // What the generator writes is read as written.
        TVQuery back(model_);
        back.SetStrict(true);
        back.SetDialect(sdSQLite);
        EXPECT_EQ(MessageOf<EVLumoraError>([&] {
                      ReadSQL(back, TStringList(again));
                      EXPECT_EQ(Statement(back), again) << sql;
                  }),
                  "")
            << sql << "\n"
            << again;
        return again;
    }
    static std::string Statement(TVQuery& query) {
        query.BuildQuery();
        std::string sql = query.GetQResult().GetSQL().GetText();
        sql.pop_back();
        return sql;
    }

    // Sorted, unless the statement's own order counts: then by its sort columns alone, which are the first.
    TRows Rows(const std::string& sql) const {
        TRows rows;
        runQuery(database_->connection(), QString::fromStdString(sql), {},
                 {[](const QSqlRecord&) {},
                  [&](const QList<QVariant>& values) {
                      std::string row;
                      for (const QVariant& value : values)
                          row += value.isNull() ? "NULL|" : value.toString().toStdString() + "|";
                      rows.push_back(row);
                  }});
        return rows;
    }
    static TRows Sorted(TRows rows) {
        std::sort(rows.begin(), rows.end());
        return rows;
    }
    void ExpectSameRows(const std::string& sql, const std::string& again) const {
        const TRows rows = Rows(sql);
        const TRows others = Rows(again);
        ASSERT_EQ(Sorted(others), Sorted(rows)) << sql << "\n" << again;
        const bool isOrdered = LowerAscii(sql).find("order by") != std::string::npos;
        ASSERT_EQ(isOrdered ? others : rows, rows) << sql << "\n" << again;
    }

    static std::string FirstLine(const std::string& message) { return message.substr(0, message.find('\r')); }

    TVDBStructure model_;

private:
    void Fill(const std::string& file) {
        DatabaseSession session;
        session.registerDatabase("people", parseDatabase(file));
        TVBDEInfo info;
        info.SetDatabaseName("people");
        offerForeignKeys(info, session);
        fillModel(model_, info, session);
    }

    const TestApplication application_;
    TemporaryFolder folder_;
    std::unique_ptr<DatabaseConnection> database_;
};

TEST_F(PeopleSQL, IsReadAsWrittenOrRefusedByName) {
    int taken = 0;
    int all = 0;
    for (const char* const name : {"concerts", "school", "flights"})
        for (const std::string& line : Open(name)) {
            ++all;
            const bool isRefused = line.starts_with('!');
            const std::size_t at = isRefused ? line.find(" | ") + 3 : 0;
            const std::string sql = line.substr(at);
            std::string refusal;
            const std::string again = Again(sql, refusal);
            if (isRefused) {
                const std::string part = line.substr(2, at - 5);
                EXPECT_NE(LowerAscii(refusal).find(LowerAscii(part)), std::string::npos) << sql << "\n"
                                                                                         << refusal << again;
                continue;
            }
            EXPECT_EQ(refusal, "") << sql;
            if (refusal.empty()) {
                ++taken;
                ExpectSameRows(sql, again);
            }
        }
    RecordProperty("taken", taken);
    std::cout << taken << " of " << all << " statements are read\n";
}

// Statements of the same styles at random.
class TRandomStatement {
public:
    explicit TRandomStatement(unsigned seed) : random_(seed) {}

    std::string Make() {
        ReadTables();
        const std::string where = Chance(3) && commaJoins_.empty() ? "" : " WHERE " + Conditions(2);
        std::string columns;
        std::string tail;
        if (Chance(3)) {
            const std::string key = Column();
            const std::string total = Total();
            columns = Chance(4) ? total : (Chance(4) ? Column() : key) + ", " + total;
            tail = " GROUP BY " + (Chance(4) && columns != total ? "1" : key);
            if (Chance(3))
                tail += " ORDER BY " + (Chance(2) ? total : key) + (Chance(2) ? " DESC" : "");
        } else if (Chance(4)) {
            columns = Total() + (Chance(2) ? ", " + Total() : "");
        } else {
            columns = Column() + (Chance(2) ? ", " + Column() : "");
            const bool distinct = Chance(4);
            if (Chance(2))
                tail = " ORDER BY " + (distinct ? "1" : Column()) + (Chance(2) ? " DESC" : "");
            if (distinct)
                columns = "DISTINCT " + columns;
        }
        return "SELECT " + columns + " FROM " + from_ + where + tail;
    }

private:
    struct TTable {
        const char* Name;
        std::vector<const char*> Texts;
        std::vector<const char*> Numbers;
    };
    struct TKey {
        int From;
        const char* Column;
        int To;
        const char* Target;
    };

    int Number(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }
    bool Chance(int in) { return Number(in) == 0; }
    template <typename T>
    const T& Any(const std::vector<T>& of) {
        return of[static_cast<std::size_t>(Number(static_cast<int>(of.size())))];
    }

    // One table, or some that keys join; each named by itself, by "T1", or not at all.
    void ReadTables() {
        used_ = {Number(5)};
        aliases_ = {""};
        std::vector<std::string> joins;
        for (int i = 1 + Number(3); i > 1; --i)
            JoinOne(joins);
        const bool named = used_.size() > 1 || Chance(2);
        for (std::size_t i = 0; i < used_.size(); ++i)
            aliases_[i] =
                named ? Chance(5) && used_.size() == 1 ? Tables()[At(i)].Name : "T" + std::to_string(i + 1)
                      : "";
        Write();
    }
    std::size_t At(std::size_t i) const { return static_cast<std::size_t>(used_[i]); }

    void JoinOne(std::vector<std::string>&) {
        std::vector<TKey> fitting;
        for (const TKey& key : Keys()) {
            const bool hasFrom = Position(key.From) >= 0;
            const bool hasTo = Position(key.To) >= 0;
            if (hasFrom != hasTo)
                fitting.push_back(key);
        }
        if (fitting.empty())
            return;
        const TKey& key = Any(fitting);
        used_.push_back(Position(key.From) >= 0 ? key.To : key.From);
        keys_.push_back(key);
        aliases_.emplace_back();
    }
    int Position(int table) const {
        const auto found = std::find(used_.begin(), used_.end(), table);
        return found == used_.end() ? -1 : static_cast<int>(found - used_.begin());
    }

    void Write() {
        const auto name = [this](std::size_t i) {
            const std::string table = Tables()[At(i)].Name;
            if (aliases_[i].empty() || aliases_[i] == table)
                return table;
            return table + (Chance(2) ? " AS " : " ") + aliases_[i];
        };
        from_ = name(0);
        const bool commas = Chance(5);
        commaJoins_.clear();
        for (std::size_t i = 1; i < used_.size(); ++i) {
            const TKey& key = keys_[i - 1];
            const std::string left =
                aliases_[static_cast<std::size_t>(Position(key.From))] + "." + key.Column;
            const std::string right = aliases_[static_cast<std::size_t>(Position(key.To))] + "." + key.Target;
            const std::string on = Chance(2) ? left + " = " + right : right + " = " + left;
            if (commas) {
                from_ += ", " + name(i);
                commaJoins_ += (commaJoins_.empty() ? "" : " AND ") + on;
            } else {
                from_ += std::string(Chance(4)   ? " LEFT JOIN "
                                     : Chance(9) ? " RIGHT JOIN "
                                                 : " JOIN ") +
                         name(i) + " ON " + on;
            }
        }
    }

    std::string Named(std::size_t table, const std::string& column) const {
        return aliases_[table].empty() ? column : aliases_[table] + "." + column;
    }
    std::string Column() {
        const auto table = static_cast<std::size_t>(Number(static_cast<int>(used_.size())));
        return Chance(2) ? Named(table, Any(Tables()[At(table)].Texts))
                         : Named(table, Any(Tables()[At(table)].Numbers));
    }
    std::string NumberColumn() {
        const auto table = static_cast<std::size_t>(Number(static_cast<int>(used_.size())));
        return Named(table, Any(Tables()[At(table)].Numbers));
    }
    std::string TextColumn() {
        const auto table = static_cast<std::size_t>(Number(static_cast<int>(used_.size())));
        return Named(table, Any(Tables()[At(table)].Texts));
    }
    std::string Total() {
        switch (Number(5)) {
        case 0:
        case 1:
            return "count(*)";
        case 2:
            return "count(DISTINCT " + Column() + ")";
        case 3:
            return "max(" + NumberColumn() + ") - min(" + NumberColumn() + ")";
        default:
            return (Chance(2) ? "avg(" : "sum(") + NumberColumn() + ")";
        }
    }

    std::string Conditions(int depth) {
        std::string text =
            commaJoins_.empty() || depth < 2 ? Condition() : commaJoins_ + " AND " + Condition();
        const std::string word = Chance(2) && (commaJoins_.empty() || depth < 2) ? " OR " : " AND ";
        for (int more = Number(3); more > 0; --more)
            text += word + (depth > 0 && Chance(3) ? (Chance(3) ? "NOT (" : "(") + Conditions(depth - 1) + ")"
                                                   : Condition());
        return text;
    }
    std::string Condition() {
        static const std::vector<const char*> texts = {"Oslo", "Norway", "Ice",    "Lee",
                                                       "CS",   "a",      "O'Hara", ""};
        static const std::vector<const char*> comparisons = {"=", "<>", "<", ">", "<=", ">=", "!="};
        const std::string text = ReplaceText(Any(texts), "'", "''");
        const std::string not_ = Chance(3) ? "NOT " : "";
        switch (Number(11)) {
        case 0:
            return NumberColumn() + " " + Any(comparisons) + " " + std::to_string(Number(60));
        case 1:
            return std::to_string(Number(60)) + " " + Any(comparisons) + " " + NumberColumn();
        case 2:
            return TextColumn() + " " + not_ + "LIKE '" + (Chance(2) ? "%" : "") + text +
                   (Chance(2) ? "%" : "") + "'";
        case 3:
            return Column() + " IS " + not_ + "NULL";
        case 4:
            return NumberColumn() + " " + not_ + "BETWEEN " + std::to_string(Number(30)) + " AND " +
                   std::to_string(Number(60));
        case 5:
            return TextColumn() + " " + not_ + "IN ('" + text + "', '" + ReplaceText(Any(texts), "'", "''") +
                   "')";
        case 6:
            return TextColumn() + " IS " + not_ + "DISTINCT FROM '" + text + "'";
        case 7:
            return NumberColumn() + " " + not_ + "IN (SELECT T2.age FROM student T2 WHERE T2.sex = \"F\")";
        case 8:
            return TextColumn() + " = \"" + std::string(Any(texts)) + "\"";
        case 9:
            return NumberColumn() + " = (SELECT max(credits) FROM course)";
        default:
            return (Chance(3) ? "NOT " : "") + TextColumn() + " " + Any(comparisons) + " '" + text + "'";
        }
    }

    static const std::vector<TTable>& Tables() {
        static const std::vector<TTable> tables = {
            {"department", {"dept_code", "dept_name"}, {"budget"}},
            {"teacher", {"name", "dept"}, {"salary", "id"}},
            {"student", {"first_name", "last_name", "sex"}, {"age", "stu_id"}},
            {"course", {"title", "cid"}, {"credits"}},
            {"takes", {"cid"}, {"grade", "stu_id"}}};
        return tables;
    }
    static const std::vector<TKey>& Keys() {
        static const std::vector<TKey> keys = {{1, "dept", 0, "dept_code"}, {2, "major", 0, "dept_code"},
                                               {2, "advisor", 1, "id"},     {3, "dept", 0, "dept_code"},
                                               {4, "stu_id", 2, "stu_id"},  {4, "cid", 3, "cid"}};
        return keys;
    }

    std::mt19937 random_;
    std::vector<int> used_;
    std::vector<TKey> keys_;
    std::vector<std::string> aliases_;
    std::string from_;
    std::string commaJoins_;
};

TEST_F(PeopleSQL, GivesTheSameRowsAtRandom) {
    Open("school");
    const char* const wanted = std::getenv("LUMORA_ROUND_TRIPS");
    const unsigned rounds = wanted ? static_cast<unsigned>(std::atoi(wanted)) : 1500;
    std::map<std::string, int> refusals;
    int taken = 0;
    for (unsigned seed = 1; seed <= rounds && !HasFailure(); ++seed) {
        const std::string sql = TRandomStatement(seed).Make();
        ASSERT_EQ(MessageOf<Exception>([&] { Rows(sql); }), "") << sql;
        std::string refusal;
        const std::string again = Again(sql, refusal);
        if (refusal.empty()) {
            ++taken;
            ExpectSameRows(sql, again);
        } else {
            ++refusals[refusal.substr(0, refusal.find('"'))];
            if (std::getenv("LUMORA_SHOW_REFUSALS"))
                std::cout << FirstLine(refusal) << " | " << sql << "\n";
        }
    }
    std::cout << taken << " of " << rounds << " random statements are read\n";
    for (const auto& [reason, count] : refusals)
        std::cout << "  " << count << " " << reason << "\n";
    EXPECT_GT(taken, static_cast<int>(rounds) / 2);
}

} // namespace
} // namespace lumora::tests
