// Random queries on the sample shop: what the engines give for the SQL is what the rows of the
// query ask for. LUMORA_TRUTH_QUERIES sets their number, LUMORA_TRUTH_SEED the first one's seed.
#include "lumora/qtsql/databaseconnection.h"
#include "lumora/query/errors.h"
#include "tests/mariadb_server.h"
#include "tests/postgres_server.h"
#include "tests/test_application.h"
#include "tests/truth/named_cases.h"
#include "tests/truth/random_query.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <algorithm>
#include <unordered_map>

using namespace lumora;
using namespace lumora::truth;
using lumora::tests::MariaDbServer;
using lumora::tests::PostgresConnection;
using lumora::tests::PostgresServer;
using lumora::tests::TemporaryFolder;

namespace {

using lumora::truth::Engine;

class SqliteShop {
public:
    SqliteShop() {
        const std::string file = folder_ / "shop.sqlite";
        if (tests::runProcess({"python3", LUMORA_SAMPLES "/make_orders_db.py", file}).status != 0)
            throw std::runtime_error("cannot make the sample database");
        QSqlDatabase handle = QSqlDatabase::addDatabase("QSQLITE", name);
        handle.setDatabaseName(QString::fromStdString(file));
        if (!handle.open())
            throw std::runtime_error("cannot open the sample database");
        prepareShop(handle);
    }
    ~SqliteShop() { QSqlDatabase::removeDatabase(name); }
    QSqlDatabase connection() const { return QSqlDatabase::database(name, false); }

private:
    static constexpr const char* name = "truth-sqlite";
    TemporaryFolder folder_;
};

// The sample model with what its own text lacks: templates with an "or". MariaDB reserves its alias "lines".
void loadModel(TVDBStructure& model) {
    QString text = QString::fromStdString(tests::readFile(LUMORA_SAMPLES "/orders.model"));
    text.replace(QRegularExpression("(?<!Order )\\blines\\b"), "items");
    model.LoadFromStrings(TStringList(text.toStdString()));
    model.GetSQLFormats().SetTime("hh:nn:ss");
    model.GetSQLFormats().SetDateTime("yyyy-mm-dd hh:nn:ss");
    model.AddOperator("EqualOrNull", "is missing or equal to", "@f = '@1' or @f is null", "", LmCommonTypes);
    for (int i = 0; i < model.GetFieldCount(); ++i)
        if (LmCommonTypes.Contains(model.GetField(i)->FieldType))
            model.GetField(i)->AddOperatorByName("EqualOrNull");
    model.AddCondition(6, "new, or larger than @", "orders.status = 'new' or orders.total > '@1'")
        ->Values[0]
        .SetDataType(ftBCD);
}

struct Tally {
    int asked = 0;
    int refusedValues = 0;
    int withRows = 0;
    std::unordered_map<std::string, int> cases; // queries that a case alone made wrong
};

class TruthTest : public testing::Test {
protected:
    TruthTest() {
        loadModel(model_);
        tables_ = readTables(sqlite_.connection());
        for (int i = 0; i < model_.GetLinkCount(); ++i)
            linkTypes_.push_back(model_.GetLink(i)->LinkType);
    }

    static unsigned fromEnvironment(const char* name, unsigned otherwise) {
        const char* const text = std::getenv(name);
        return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
    }

    void askAll(const QSqlDatabase& database, const Engine& engine);
    void ask(const QSqlDatabase& database, const Engine& engine, unsigned seed, Tally& tally);
    void compare(TVQueryPanel& panel, const QSqlDatabase& database, const Engine& engine, Tally& tally);

    const tests::TestApplication application_;
    SqliteShop sqlite_;
    TVDBStructure model_;
    std::vector<TDSLinkType> linkTypes_; // as the sample has them; a random query may turn some
    std::vector<Table> tables_;
};

// The rows that only one side has, a few of them.
std::string differences(std::vector<std::string> wanted, std::vector<std::string> got) {
    std::sort(wanted.begin(), wanted.end());
    std::sort(got.begin(), got.end());
    std::vector<std::string> missing, surplus;
    std::set_difference(wanted.begin(), wanted.end(), got.begin(), got.end(), std::back_inserter(missing));
    std::set_difference(got.begin(), got.end(), wanted.begin(), wanted.end(), std::back_inserter(surplus));
    std::string report;
    for (const auto& [title, rows] : {std::pair("missing: ", missing), std::pair("surplus: ", surplus)})
        for (std::size_t i = 0; i < std::min<std::size_t>(rows.size(), 5); ++i)
            report += title + rows[i].substr(0, 400) + "\n";
    return report.empty() ? report
                          : report + std::to_string(missing.size()) + " rows missing, " +
                                std::to_string(surplus.size()) + " too many\n";
}

// -1, 0 or 1; nulls count as least or as greatest.
int orderOf(const Cells& left, const Cells& right, const Answer& answer, const Engine& engine) {
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (left[i] == right[i])
            continue;
        bool less = left[i] < right[i];
        if (isNull(left[i]) || isNull(right[i]))
            less = isNull(left[i]) == engine.nullsFirst;
        return less != answer.descending[i] ? -1 : 1;
    }
    return 0;
}

// What is wrong with the rows that an engine gave; empty when they are what was asked for.
std::string fault(const Answer& answer, const std::vector<Cells>& given, const Engine& engine) {
    std::vector<std::string> wanted, got;
    std::unordered_map<std::string, const Cells*> keys;
    for (const AnswerRow& row : answer.rows) {
        wanted.push_back(row.shown);
        keys[row.shown] = &row.keys;
    }
    for (const Cells& row : given)
        got.push_back(show(row));
    if (const std::string report = differences(wanted, got); !report.empty())
        return report;
    for (std::size_t i = 1; i < got.size(); ++i)
        if (orderOf(*keys[got[i - 1]], *keys[got[i]], answer, engine) > 0)
            return "not sorted: " + got[i - 1] + "\nbefore:     " + got[i] + "\n";
    return {};
}

std::string queryText(TVQueryPanel& panel) {
    TStringList lines;
    panel.SetSaveTitles(false);
    try {
        panel.SaveToStrings(lines);
    } catch (const Exception& error) { // dates that are none
        lines.Add(error.what());
    }
    return lines.GetText();
}

// MariaDB 10.11 shows one group's average for others too when a function of a sum is beside it and only
// distinct rows are asked for.
void avoidWrongAverages(TVQueryPanel& panel) {
    const TRFieldList& fields = panel.GetQResult().GetResultFields();
    for (int i = 0; i < fields.Count(); ++i)
        if (fields.GetRField(i)->GetFormula() == "round(sum(@1), 2)")
            panel.SetSQLOptions(panel.GetSQLOptions() - TSQLOptions{soSelectDistinct});
}

void TruthTest::ask(const QSqlDatabase& database, const Engine& engine, unsigned seed, Tally& tally) {
    for (std::size_t i = 0; i < linkTypes_.size(); ++i)
        model_.GetLink(static_cast<int>(i))->LinkType = linkTypes_[i];
    TVQueryPanel panel;
    panel.SetDbStruct(&model_);
    panel.SetStrict(seed % 3 != 0);
    panel.Activate();
    makeRandomQuery(panel, tables_, seed);
    if (!engine.joinsFull) {
        avoidWrongAverages(panel);
        for (int i = 0; i < model_.GetLinkCount(); ++i)
            if (model_.GetLink(i)->LinkType == ltOuterFull)
                model_.GetLink(i)->LinkType = ltOuterLeft;
    }
    ++tally.asked;
    SCOPED_TRACE(engine.name + ", " + (panel.GetStrict() ? "strict" : "plain") + ", seed " +
                 std::to_string(seed));
    compare(panel, database, engine, tally);
}

// What comes of a query on an engine.
struct Outcome {
    std::string sql;
    std::string refusal; // by the builder or by the engine
    std::string fault;   // of the rows
};

Outcome tryQuery(TVQueryPanel& panel, const QSqlDatabase& database, const Engine& engine,
                 const std::vector<Table>& tables, Tally& tally) {
    Outcome outcome;
    try {
        panel.BuildQuery();
        outcome.sql = panel.GetQResult().GetSQL().GetText();
        const std::vector<Cells> given = runStatement(database, outcome.sql);
        tally.withRows += given.empty() ? 0 : 1;
        outcome.fault = fault(answerOf(panel, tables, engine), given, engine);
    } catch (const EVQueryPanelError& error) {
        outcome.refusal = error.what();
    } catch (const std::bad_optional_access&) {
        outcome.fault = "a value has no meaning, and yet there are rows\n";
    } catch (const std::runtime_error& error) {
        outcome.refusal = error.what();
    }
    return outcome;
}

void TruthTest::compare(TVQueryPanel& panel, const QSqlDatabase& database, const Engine& engine,
                        Tally& tally) {
    std::vector<const NamedCase*> cases;
    for (const NamedCase& named : namedCases)
        if (!panel.GetStrict() && named.effect(engine) != Effect::none && named.applies(panel, engine))
            cases.push_back(&named);
    const Outcome outcome = tryQuery(panel, database, engine, tables_, tally);
    const std::string report = panel.GetQueryText() + outcome.sql + outcome.refusal + "\n" + outcome.fault +
                               "The query text:\n" + queryText(panel);
    if (panel.GetStrict() && hasRefusedValue(panel)) {
        EXPECT_EQ(outcome.refusal.substr(0, 13), "Invalid value") << report;
        ++tally.refusedValues;
    } else if (panel.GetStrict() && sortsDistinctByExpression(panel, engine)) {
        EXPECT_EQ(outcome.refusal.substr(0, 35), "Distinct records can not be sorted ") << report;
    } else if (cases.empty()) {
        EXPECT_TRUE(outcome.refusal.empty() && outcome.fault.empty()) << report;
    } else {
        for (const NamedCase* const named : cases)
            EXPECT_FALSE(named->effect(engine) == Effect::refused && outcome.refusal.empty())
                << named->name << " is refused no more\n"
                << report;
        if (cases.size() == 1 && !(outcome.refusal.empty() && outcome.fault.empty()))
            ++tally.cases[cases[0]->name];
    }
}

void TruthTest::askAll(const QSqlDatabase& database, const Engine& engine) {
    const unsigned defaultCount = 3000;
    const unsigned usualCount = engine.joinsFull ? defaultCount : 1000; // MariaDB is slow without indexes
    const unsigned count = fromEnvironment("LUMORA_TRUTH_QUERIES", usualCount);
    const unsigned first = fromEnvironment("LUMORA_TRUTH_SEED", 1);
    model_.SetQuotedTypes(engine.quotesBooleans ? DefaultQuotedTypes
                                                : DefaultQuotedTypes - TQuotedTypes{ftBoolean});
    Tally tally;
    for (unsigned seed = first; seed < first + count && !HasFailure(); ++seed)
        ask(database, engine, seed, tally);
    std::cout << tally.asked << " queries, " << tally.withRows << " with rows, " << tally.refusedValues
              << " with refused values\n";
    for (const NamedCase& named : namedCases) {
        std::cout << "  " << tally.cases[named.name] << " with: " << named.name << "\n";
        const bool occurs = named.effect(engine) == Effect::none || tally.cases[named.name] > 0;
        EXPECT_TRUE(occurs || count < defaultCount || HasFailure())
            << named.name << " does no harm any more: " << named.reason;
    }
    EXPECT_TRUE(tally.withRows > tally.asked / 4 || HasFailure());
}

TEST_F(TruthTest, SqliteGivesWhatTheRowsSay) {
    askAll(sqlite_.connection(), sqliteEngine);
}

TEST_F(TruthTest, PostgresGivesWhatTheRowsSay) {
    const PostgresServer* const server = PostgresServer::get();
    if (!server)
        GTEST_SKIP() << PostgresServer::notInstalled;
    const PostgresConnection postgres(*server);
    fillServer(postgres.connection(), tables_);
    askAll(postgres.connection(), postgresEngine);
}

TEST_F(TruthTest, MariaDbGivesWhatTheRowsSay) {
    const MariaDbServer* const server = MariaDbServer::get();
    if (!server)
        GTEST_SKIP() << MariaDbServer::notInstalled;
    const DatabaseConnection mariaDb(parseDatabase(server->url()), DatabaseConnection::Access::ReadWrite);
    fillServer(mariaDb.connection(), tables_);
    askAll(mariaDb.connection(), mariaDbEngine);
}

} // namespace
