// The command line program, run as a process.

#include "tests/cli_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace lumora::tests {
namespace {

using Words = std::vector<std::string>;

const std::string samples = LUMORA_SAMPLES;
const std::string sampleModel = samples + "/orders.model";

std::string sampleQuery(const std::string& name) {
    return samples + "/queries/" + name + ".qry";
}

std::vector<std::filesystem::path> sampleQueries() {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(samples + "/queries"))
        paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    return paths;
}

ProcessResult lumora(Words words, const ProcessInput& input = {}) {
    words.insert(words.begin(), LUMORA_PROGRAM);
    return runProcess(words, input);
}

// What a run that must succeed writes.
std::string outputOf(const Words& words, const ProcessInput& input = {}) {
    const ProcessResult result = lumora(words, input);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return result.out;
}

// The message of a run that must fail without output.
std::string errorOf(const Words& words, const ProcessInput& input = {}) {
    const ProcessResult result = lumora(words, input);
    EXPECT_EQ(result.status, 1) << testing::PrintToString(words);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_EQ(result.err.substr(0, 8), "lumora: ");
    return result.err.size() < 9 ? result.err : result.err.substr(8, result.err.size() - 9);
}

int linesIn(const std::string& text) {
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

// --- Usage.

TEST(Cli, BadUsageIsToldWithAUsageLine) {
    const std::string anyCommand =
        "usage: lumora COMMAND [OPTIONS] ARGUMENTS (lumora --help lists the commands)\n";
    const std::string sql = "usage: lumora sql [OPTIONS] MODEL QUERY\n";
    const std::string run = "usage: lumora run [OPTIONS] DATABASE MODEL QUERY\n";
    const std::vector<std::pair<Words, std::string>> cases = {
        {{}, "Missing command\n" + anyCommand},
        {{""}, "Unknown command \"\"\n" + anyCommand},
        {{"SQL", "m", "q"}, "Unknown command \"SQL\"\n" + anyCommand},
        {{"--syntax"}, "Unknown option \"--syntax\"\n" + anyCommand},
        {{"model"}, "Missing argument MODEL\nusage: lumora model MODEL\n"},
        {{"model", "--strict", "m"}, "Unknown option \"--strict\"\nusage: lumora model MODEL\n"},
        {{"path", "m", "a"}, "Missing argument TO\nusage: lumora path MODEL FROM TO\n"},
        {{"sql", "m", "q", "x"}, "Surplus argument \"x\"\n" + sql},
        {{"sql", "m", "--", "--strict", "x"}, "Surplus argument \"x\"\n" + sql},
        {{"sql", "-x", "m", "q"}, "Unknown option \"-x\"\n" + sql},
        {{"sql", "--no-titles", "m", "q"}, "Unknown option \"--no-titles\"\n" + sql},
        {{"sql", "--limit=1", "m", "q"}, "Unknown option \"--limit\"\n" + sql},
        {{"sql", "m", "q", "--syntax"}, "Option --syntax needs a value\n" + sql},
        {{"sql", "m", "q", "--strict="}, "Option --strict takes no value\n" + sql},
        {{"sql", "m", "q", "--syntax=sql2"},
         "Option --syntax does not know \"sql2\", only ssSQL1, ssSQL2, ssOracle\n" + sql},
        {{"sql", "-", "-"}, "Only one argument can be \"-\"\n" + sql},
        {{"queries"}, "Missing command after \"queries\"\n" + anyCommand},
        {{"queries list", "b"}, "Unknown command \"queries list\"\n" + anyCommand},
        {{"queries", "copy"}, "Unknown command \"queries copy\"\n" + anyCommand},
        {{"queries", "show", "b"}, "Missing argument NAME\nusage: lumora queries show BASE NAME\n"},
        {{"queries", "show", "-", "n"},
         "A query base cannot be read from standard input\nusage: lumora queries show BASE NAME\n"},
        {{"run", "-", "m", "q"}, "A database cannot be read from standard input\n" + run},
        {{"run", "d", "m", "q", "--format", "xml"},
         "Option --format does not know \"xml\", only table, csv, json\n" + run},
        {{"run", "d", "m", "q", "--limit", "-1"},
         "Option --limit needs a number of rows, not \"-1\"\n" + run},
        {{"run", "d", "m", "q", "--limit", ""}, "Option --limit needs a number of rows, not \"\"\n" + run},
        {{"run", "d", "m", "q", "--limit=99999999999999999999"},
         "Option --limit needs a number of rows, not \"99999999999999999999\"\n" + run},
        {{"run", "d", "m", "q", "--param", "x"}, "Option --param needs NAME=VALUE, not \"x\"\n" + run},
        {{"run", "d", "m", "q", "--param", "=x"}, "Option --param needs NAME=VALUE, not \"=x\"\n" + run},
        {{"run", "d", "m", "q", "--param", "a=1", "--param", "A=2"}, "Parameter A is given twice\n" + run},
    };
    for (const auto& [words, message] : cases) {
        const ProcessResult result = lumora(words);
        EXPECT_EQ(result.status, 2) << message;
        EXPECT_EQ(result.err, "lumora: " + message);
        EXPECT_EQ(result.out, "");
    }
    for (const char* const list : {"soNone", "soSelectDistinct,", "soSelectDistinct soSortByNames"}) {
        const ProcessResult result = lumora({"sql", "m", "q", "--options", list});
        EXPECT_EQ(result.status, 2);
        EXPECT_NE(result.err.find("Option --options does not know"), std::string::npos) << result.err;
    }
}

TEST(Cli, HelpTellsEveryCommandAndOption) {
    const Words query = {"--syntax", "--options", "--main-table", "--strict"};
    std::map<std::string, Words> options = {{"model", {}},   {"path", {}},     {"sql", query},
                                            {"text", query}, {"words", query}, {"run", query},
                                            {"parse", {}},   {"visual", query}};
    options["queries list"] = {"--format"};
    options["queries save"] = {"--replace"};
    options["text"].push_back("--no-titles");
    options["visual"].push_back("--no-titles");
    options["run"].insert(options["run"].end(), {"--param", "--limit", "--format"});
    const std::string help = outputOf({"--help"});
    for (const auto& [command, names] : options) {
        EXPECT_NE(help.find("\n  " + command + " "), std::string::npos) << help;
        const std::size_t blank = std::min(command.find(' '), command.size());
        Words words = {command.substr(0, blank)};
        if (blank < command.size())
            words.push_back(command.substr(blank + 1));
        Words asked = words;
        asked.insert(asked.end(), {"one", "--help", "--whatever"});
        const std::string own = outputOf(asked);
        EXPECT_EQ(own.rfind("usage: lumora " + command + " ", 0), 0U) << own;
        for (const std::string& name : names)
            EXPECT_NE(own.find("\n  " + name + " "), std::string::npos) << own;
        words.insert(words.end(), {"--", "--help"});
        EXPECT_EQ(lumora(words).out, "") << "no option behind --";
    }
    const std::string group = outputOf({"queries", "--help"});
    EXPECT_NE(group.find("\n  queries list "), std::string::npos) << group;
    EXPECT_EQ(group.find("\n  run "), std::string::npos) << group;
}

// What a command or an option is for stands beside it, all in one column.
void expectColumns(const std::string& help, const std::string& heading) {
    const std::size_t start = help.find(heading);
    ASSERT_NE(start, std::string::npos) << help;
    std::istringstream lines(help.substr(start + heading.size()));
    std::size_t column = 0;
    for (std::string line; std::getline(lines, line) && !line.empty();) {
        const std::size_t gap = line.find("  ", 2);
        const std::size_t text = line.find_first_not_of(' ', line[2] == ' ' ? 0 : gap);
        ASSERT_NE(text, std::string::npos) << line;
        column = column == 0 ? text : column;
        EXPECT_GE(text, column) << line;
        EXPECT_TRUE(text == column || line[2] == ' ') << line;
    }
    EXPECT_GT(column, 0U);
}

TEST(Cli, HelpStandsInColumns) {
    const std::string help = outputOf({"--help"});
    expectColumns(help, "\nCommands:\n");
    EXPECT_NE(help.find("\nThe exit status is 0 "), std::string::npos) << help;
    for (const char* const command : {"model", "sql", "run", "visual"}) {
        const std::string own = outputOf({command, "--help"});
        expectColumns(own, "\nOptions:\n");
        EXPECT_EQ(own.substr(0, own.find('\n')).find("  "), std::string::npos)
            << "an argument without a name";
    }
}

TEST(Cli, StatementsBecomeTreesAndQueries) {
    const ProcessInput statement = {
        .text = "select customers.city from customers\nwhere customers.city like 'O%'"};
    EXPECT_EQ(outputOf({"parse", "-"}, statement),
              "distinct=0\nall=0\nfield expr=<customers.city> name=<city> alias=<> sorting=0 order=0\n"
              "table name=<customers> alias=<customers>\nbracket and\n"
              "  cond neg=0 sub=0 left=<customers.city> op=<like> value=<'O%'>\n");
    const std::string query = outputOf({"visual", "--no-titles", "--strict", sampleModel, "-"}, statement);
    EXPECT_NE(query.find("\nOptions=0\n"), std::string::npos) << query; // not DISTINCT
    EXPECT_EQ(outputOf({"sql", "--strict", sampleModel, "-"}, {.text = query}),
              "SELECT customers.city\nFROM customers\nWHERE\n (\ncustomers.city like 'O%'\n)\n");
    EXPECT_EQ(errorOf({"parse", "-"}, {.text = "select a\nfrom"}), "Wrong SQL statement Line:2");
    EXPECT_EQ(errorOf({"visual", "--strict", sampleModel, "-"}, {.text = "select x.y from customers"}),
              "Unrecognized field \"x.y\" Line:1");
}

// --- Files and streams.

TEST(Cli, FilesThatCannotBeReadAreNamed) {
    const TemporaryFolder folder;
    const std::string missing = folder / "no\r\nsuch\rfile";
    const std::string shown = folder / "no such file";
    for (const Words& words :
         {Words{"model", missing}, Words{"sql", missing, "x"}, Words{"words", sampleModel, missing},
          Words{"path", missing, "a", "b"}, Words{"run", "x", sampleModel, missing}})
        EXPECT_EQ(errorOf(words), "Cannot open file \"" + shown + "\": No such file or directory");
    EXPECT_EQ(errorOf({"model", samples}), "Cannot read file \"" + samples + "\": it is a directory");
    EXPECT_EQ(errorOf({"text", sampleModel, sampleQuery("04-text-contains"), "--main-table=nowhere"}),
              "No such table nowhere");
}

TEST(Cli, TheExceptionsOwnTextIsPrinted) {
    const TemporaryFolder folder;
    writeFile(folder / "m", "[Main]\nVersion=3.5\nTableCount=1\n[Table:1]\nName=a\nAlias=a\nLinks=b\n");
    EXPECT_EQ(errorOf({"model", folder / "m"}), "Can not find section Link:a-b");
    writeFile(folder / "q", "[Main]\nVersion=3.5\n[Row]\nRowType=1\nRowCount=many\nLinkType=0\n");
    EXPECT_EQ(errorOf({"text", sampleModel, folder / "q"}), "\"many\" is not a valid integer value");
    writeFile(folder / "q", "[Main]\nVersion=3.5\n");
    EXPECT_EQ(errorOf({"sql", sampleModel, folder / "q"}), "No enough information for building query");
    writeFile(folder / "q", "\n");
    EXPECT_EQ(errorOf({"sql", sampleModel, folder / "q"}),
              "\"" + (folder / "q") + "\" is empty, which is no query");
}

TEST(Cli, DashIsStandardInput) {
    const std::string query = sampleQuery("01-customers-in-norway");
    const std::string sql = outputOf({"sql", sampleModel, query});
    EXPECT_EQ(outputOf({"sql", "-", query}, {.text = readFile(sampleModel)}), sql);
    EXPECT_EQ(outputOf({"sql", sampleModel, "--", "-"}, {.text = readFile(query)}), sql);
    EXPECT_EQ(errorOf({"path", "-", "customers", "-"}, {.text = readFile(sampleModel)}), "No such table -");
}

TEST(Cli, OutputThatCannotBeWrittenIsAFailure) {
    const ProcessResult closed = lumora({"model", sampleModel}, {.outFile = "-"});
    EXPECT_EQ(closed.status, 1);
    EXPECT_EQ(closed.err, "lumora: Cannot write standard output: Bad file descriptor\n");
    const ProcessResult full = lumora({"--help"}, {.outFile = "/dev/full"});
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.err, "lumora: Cannot write standard output: No space left on device\n");
    // A reader that goes away is a failure too, and no signal ends the program without a word.
    const ProcessResult broken = lumora({"model", sampleModel}, {.outFile = "|"});
    EXPECT_EQ(broken.status, 1);
    EXPECT_EQ(broken.err, "lumora: Cannot write standard output: Broken pipe\n");
}

// --- Models and queries.

TEST(Cli, TextsAreWrittenAsTheyWereRead) {
    EXPECT_EQ(outputOf({"model", sampleModel}), readFile(sampleModel));
    for (const std::filesystem::path& path : sampleQueries()) {
        EXPECT_EQ(outputOf({"text", "--no-titles", sampleModel, path}), readFile(path)) << path;
        const std::string titled = outputOf({"text", sampleModel, path});
        EXPECT_EQ(titled.rfind("[Query Panel]\nttlFilter=", 0), 0U);
        EXPECT_EQ(outputOf({"text", sampleModel, "-"}, {.text = titled}), titled) << path;
    }
}

TEST(Cli, PathGivesAliases) {
    EXPECT_EQ(outputOf({"path", sampleModel, "customers", "PRODUCTS"}),
              "customers\norders\nlines\nproducts\n");
    EXPECT_EQ(outputOf({"path", sampleModel, "bosses", "employees"}), "bosses\nemployees\n");
    EXPECT_EQ(errorOf({"path", sampleModel, "customers", "nowhere"}), "No such table nowhere");
}

TEST(Cli, WordsAreThoseOfTheScreen) {
    EXPECT_EQ(outputOf({"words", sampleModel, sampleQuery("02-list-of-countries")}),
              " Choose records where all of the following apply\n"
              "   Country is in list Iceland, Ireland, United Kingdom\n"
              "   the customer has never placed an order\n");
}

TEST(Cli, OptionsShapeTheSQL) {
    const std::string query = sampleQuery("07-unpaid-orders");
    const std::string sql = outputOf({"sql", sampleModel, query});
    EXPECT_EQ(sql.rfind("SELECT DISTINCT ", 0), 0U);
    EXPECT_NE(sql.find("\n     LEFT OUTER JOIN payments ON ("), std::string::npos) << sql;
    EXPECT_EQ(outputOf({"sql", "--syntax", "sssql2", sampleModel, "--options",
                        "soASCIIRFields, SOSELECTDISTINCT", query}),
              sql);
    EXPECT_NE(outputOf({"sql", sampleModel, query, "--syntax=ssSQL1", "--syntax=ssOracle"}).find("(+)"),
              std::string::npos);
    const std::string plain = outputOf({"sql", sampleModel, query, "--options", "soSortByNames"});
    EXPECT_EQ(outputOf({"sql", sampleModel, query, "--options="}).rfind("SELECT orders.order_id", 0), 0U);
    EXPECT_EQ(plain.rfind("SELECT orders.order_id", 0), 0U) << plain;
    EXPECT_NE(plain.find("\nORDER BY orders."), std::string::npos) << plain;
    EXPECT_NE(outputOf({"sql", sampleModel, query, "--main-table", "shippers"}).find("\nFROM shippers\n"),
              std::string::npos);
}

TEST(Cli, OptionsWinOverThoseOfTheText) {
    std::string query = readFile(sampleQuery("01-customers-in-norway"));
    query.replace(query.find("Options=\n"), 9, "Options=16\n"); // soBracketJoins alone
    EXPECT_EQ(outputOf({"sql", sampleModel, "-"}, {.text = query}).rfind("SELECT coalesce", 0), 0U);
    const Words given = {"sql", sampleModel, "-", "--options", "soSelectDistinct"};
    EXPECT_EQ(outputOf(given, {.text = query}).rfind("SELECT DISTINCT coalesce", 0), 0U);
}

TEST(Cli, StrictIsAskedFor) {
    std::string query = readFile(sampleQuery("03-orders-between-dates"));
    const std::string value = "Value1=2000\n";
    ASSERT_NE(query.find(value), std::string::npos);
    query.replace(query.find(value), value.size(), "Value1=0 or 1=1\n");
    EXPECT_NE(outputOf({"sql", sampleModel, "-"}, {.text = query}).find(">0 or 1=1"), std::string::npos);
    EXPECT_EQ(errorOf({"sql", "--strict", sampleModel, "-"}, {.text = query}),
              "Invalid value \"0 or 1=1\" for \"Order total\"");
    EXPECT_EQ(errorOf({"run", "nowhere.sqlite", sampleModel, "-"}, {.text = query}),
              "Invalid value \"0 or 1=1\" for \"Order total\"");
}

// --- Query bases.

TEST(CliQueries, AreKeptInFoldersAndFiles) {
    const TemporaryFolder folder;
    const std::string query = sampleQuery("05-nested-brackets");
    const std::string other = "[Main]\nVersion=3.5\n[Description]\ntwo\nlines\n";
    for (const std::string& base : {folder / "queries", folder / "queries.sqlite", folder / "queries.DB"}) {
        EXPECT_EQ(errorOf({"queries", "list", base}),
                  "Cannot open query base \"" + base + "\": No such file or directory");
        EXPECT_EQ(outputOf({"queries", "save", base, "Größe: a/b", query}), "");
        EXPECT_EQ(outputOf({"queries", "save", base, "-", "-"}, {.text = other}), "");
        EXPECT_EQ(outputOf({"queries", "show", base, "Größe: a/b"}), readFile(query));
        EXPECT_EQ(errorOf({"queries", "save", base, "-", query}),
                  "There is a query \"-\" already (use --replace)");
        EXPECT_EQ(errorOf({"queries", "delete", base, "b"}), "There is no query \"b\"");
        EXPECT_EQ(errorOf({"queries", "save", base, "b", "-"}, {.text = "select 1"}),
                  "Standard input is no query text: it has no section [Main]");
        EXPECT_EQ(errorOf({"queries", "save", base, "", query}), "A query needs a name");
        outputOf({"queries", "save", "--replace", base, "GRößE: A/B", "-"}, {.text = other});
        EXPECT_EQ(outputOf({"queries", "list", base}), "name       | description\n"
                                                       "-----------+------------\n"
                                                       "-          | two lines\n"
                                                       "Größe: a/b | two lines\n(2 rows)\n");
        outputOf({"queries", "delete", base, "-"});
        EXPECT_EQ(outputOf({"queries", "list", base, "--format=csv"}),
                  "name,description\nGröße: a/b,\"two\nlines\"\n");
    }
    EXPECT_TRUE(std::filesystem::is_regular_file(folder / "queries.DB"));
    EXPECT_TRUE(std::filesystem::exists(folder / "queries/Größe%3A a%2Fb.qry"));
    EXPECT_EQ(errorOf({"queries", "list", query}),
              "Cannot open database \"" + query + "\": file is not a database");
}

// --- Running the samples.

TEST(CliRun, SamplesGiveTheirRows) {
    const TemporaryFolder folder;
    const std::string database = folder / "orders.sqlite";
    const ProcessResult made = runProcess({"python3", samples + "/make_orders_db.py", database});
    ASSERT_EQ(made.status, 0) << made.err;
    const std::string before = readFile(database);
    const int rows[] = {36, 15, 6, 4, 25, 10, 26, 10, 19, 12, 6, 16};
    const std::vector<std::filesystem::path> queries = sampleQueries();
    ASSERT_EQ(queries.size(), std::size(rows));
    for (std::size_t i = 0; i < queries.size(); ++i) {
        Words words = {"run", database, sampleModel, queries[i]};
        if (queries[i].filename() == "10-parameters.qry")
            words.insert(words.end(), {"--param", "country=Germany", "--param=WORD=tent", "--param",
                                       "Since= 2023-01-01 "});
        const std::string table = outputOf(words);
        EXPECT_EQ(linesIn(table), rows[i] + 3) << queries[i];
        EXPECT_NE(table.find("\n(" + std::to_string(rows[i]) + " rows)\n"), std::string::npos);
        words.insert(words.end(), {"--format", "csv"});
        EXPECT_EQ(linesIn(outputOf(words)), rows[i] + 1) << queries[i];
        words.back() = "json";
        EXPECT_EQ(linesIn(outputOf(words)), rows[i] + 2) << queries[i];
    }
    EXPECT_EQ(readFile(database), before);

    const Words words = {"run", database, sampleModel, sampleQuery("06-sales-by-category")};
    const std::string table = outputOf(words);
    for (const char* const locale : {"LC_ALL=de_DE.UTF-8", "LC_ALL=C", "LANG=tr_TR"})
        EXPECT_EQ(outputOf(words, {.environment = {locale}}), table) << locale;
    Words limited = words;
    limited.insert(limited.end(), {"--limit", "2", "--format=csv"});
    EXPECT_EQ(outputOf(limited), "Category,Ordersplaced,Pieces,Sales,Averageline,Lastorder\n"
                                 "Tents,61,281,37468.51,551.01,2024-12-31\n"
                                 "Garden furniture,56,150,30917.4,483.08,2024-12-30\n");
}

// --- Running on a small database of awkward values.

struct Row {
    int field;
    std::string op;
    std::string value;
    bool isParam = false;
    bool enabled = true;
};

void runScript(const std::string& database, const std::string& sql) {
    const std::string program = "import sqlite3, sys\n"
                                "c = sqlite3.connect(sys.argv[1]); c.executescript(sys.stdin.read())\n";
    const ProcessResult made = runProcess({"python3", "-c", program, database}, {.text = sql});
    ASSERT_EQ(made.status, 0) << made.err;
}

class CliRunSmall : public testing::Test {
protected:
    void SetUp() override {
        runScript(database_,
                  "create table things (id integer, name text, amount real, made date, seen timestamp,"
                  " open boolean, extra);"
                  "insert into things values (1, 'plain', 2.5, '2024-02-29', '2024-02-29 08:05:00', 1, null),"
                  " (2, 'O''Hara \"x\", ;--', -0.1, '2024-03-01', '2024-03-01 00:00:00', 0, ''),"
                  " (3, ':Name' || char(10) || '100%', 1e300, null, null, 1, x'00ff'),"
                  " (4, '日本 é', null, '1999-12-31', null, 0, 0.1 + 0.2);");
        writeFile(model_, modelText());
    }

    static std::string modelText() {
        std::string text = "[Main]\nVersion=3.5\nOperatCount=5\nTableCount=1\nFieldCount=7\nCondCount=0\n"
                           "FieldGroups=0\nDefaultMainTable=\nRootFieldsFirst=1\n";
        const char* const operators[][3] = {{"Equal", "@f = '@1'", "vkScalar"},
                                            {"Contains", "@f like '%@1%'", "vkScalar"},
                                            {"InList", "@f in (@1)", "vkList"},
                                            {"Least", "@f >= '@1'", "vkScalar"},
                                            {"Bad", "@f = 1); delete from things --", "vkScalar"}};
        int n = 0;
        for (const auto& op : operators)
            text += "[Operator:" + std::to_string(++n) + "]\nName=" + op[0] + "\nDisplayName=" + op[0] +
                    "\nSQLName=" + op[1] +
                    "\nValFormat=\nExprType=SameAsField\nAppliedTypes=ftString,ftInteger,ftFloat,ftDate,"
                    "ftDateTime,ftBoolean,\nValueKind=" +
                    op[2] + "\n";
        text += "[Table:1]\nName=things\nDisplayName=Things\nAlias=things\nQuoted=0\nHints=\nLinks=\n";
        const char* const fields[][3] = {{"id", "Number", "3"},     {"name", "Name", "1"},
                                         {"amount", "Amount", "6"}, {"made", "Made on", "9"},
                                         {"seen", "Seen at", "11"}, {"open", "Open", "5"},
                                         {"extra", "Extra", "1"}};
        n = 0;
        for (const auto& field : fields)
            text += fieldText(++n, field[0], field[1], field[2]);
        return text;
    }

    static std::string fieldText(int id, const std::string& name, const std::string& caption,
                                 const std::string& type) {
        return "[Field:" + std::to_string(id) + "]\nID=" + std::to_string(id) + "\nKind=vfkData" +
               "\nFieldExpr=" + name + "\nDisplayName=" + caption + "\nTableAlias=things" +
               "\nEditType=0\nFieldType=" + type +
               "\nFieldSize=0\nQuoted=0\nUIC=1\nUIR=1\nOperators=Equal,Contains,InList,Least,Bad\n";
    }

    // A query that shows the fields, ordered by the first, in the rows that meet all conditions.
    static std::string queryText(const std::vector<int>& fields, const std::vector<Row>& rows) {
        std::string text = "[Main]\nVersion=3.5\n[RFields]\nCount=" + std::to_string(fields.size()) +
                           "\nVersion=3.5\nJustSorting=0\n";
        for (std::size_t i = 0; i < fields.size(); ++i)
            text += "[RField" + std::to_string(i + 1) + "]\nFormula=@1\nFields=" + std::to_string(fields[i]) +
                    "\nAlias=\nCaption=c\nSorting=" + (i == 0 ? "1" : "0") +
                    "\nSortOrder=" + (i == 0 ? "1" : "0") + "\n";
        text += "[Row]\nEnabled=1\nRowType=1\nLinkType=0\nRowCount=" + std::to_string(rows.size()) + "\n";
        for (std::size_t i = 0; i < rows.size(); ++i)
            text += "[Row" + std::to_string(i + 1) +
                    ".]\nRowType=0\nEnabled=" + (rows[i].enabled ? "1" : "0") +
                    "\nFieldID=" + std::to_string(rows[i].field) +
                    "\nParam1=" + (rows[i].isParam ? "1" : "0") + "\nParam2=0\nOperator=" + rows[i].op +
                    "\nValue1=" + rows[i].value + "\nValue2=\nVFormat1=@v\n";
        return text;
    }

    Words command(const Words& options) {
        Words words = {"run", database_, model_, "-"};
        words.insert(words.end(), options.begin(), options.end());
        return words;
    }
    std::string rowsOf(const std::vector<int>& fields, const std::vector<Row>& rows, Words options = {}) {
        options.insert(options.begin(), {"--format", "csv"});
        const std::string text = outputOf(command(options), {.text = queryText(fields, rows)});
        return text.substr(text.find('\n') + 1);
    }
    // The numbers of the things that meet the conditions.
    std::string numbers(const std::vector<Row>& rows, const Words& options = {}) {
        std::string text = rowsOf({1}, rows, options);
        std::replace(text.begin(), text.end(), '\n', ' ');
        return text;
    }
    std::string refusal(const std::vector<Row>& rows, const Words& options = {}) {
        return errorOf(command(options), {.text = queryText({1}, rows)});
    }

    TemporaryFolder folder_;
    std::string database_ = folder_ / "small.sqlite";
    std::string model_ = folder_ / "small.model";
};

TEST_F(CliRunSmall, FormatsKeepEveryValue) {
    const std::string query = queryText({1, 2, 3, 6, 7, 2}, {});
    EXPECT_EQ(outputOf(command({}), {.text = query}),
              "id | name            | amount | open | extra | name\n"
              "---+-----------------+--------+------+-------+----------------\n"
              " 1 | plain           |    2.5 |    1 | NULL  | plain\n"
              " 2 | O'Hara \"x\", ;-- |   -0.1 |    0 |       | O'Hara \"x\", ;--\n"
              " 3 | :Name\\n100%     |  1E300 |    1 | 00ff  | :Name\\n100%\n"
              " 4 | 日本 é          |   NULL |    0 | 0.3   | 日本 é\n"
              "(4 rows)\n");
    EXPECT_EQ(outputOf(command({"--format", "csv"}), {.text = query}),
              "id,name,amount,open,extra,name\n"
              "1,plain,2.5,1,,plain\n"
              "2,\"O'Hara \"\"x\"\", ;--\",-0.1,0,\"\",\"O'Hara \"\"x\"\", ;--\"\n"
              "3,\":Name\n100%\",1e+300,1,00ff,\":Name\n100%\"\n"
              "4,日本 é,,0,0.30000000000000004,日本 é\n");
    EXPECT_EQ(
        outputOf(command({"--format", "json", "--limit", "3"}), {.text = query}),
        "[\n"
        R"({"id":1,"name":"plain","amount":2.5,"open":1,"extra":null,"name:2":"plain"},)"
        "\n"
        R"({"id":2,"name":"O'Hara \"x\", ;--","amount":-0.1,"open":0,"extra":"","name:2":"O'Hara \"x\", ;--"},)"
        "\n"
        R"({"id":3,"name":":Name\n100%","amount":1e+300,"open":1,"extra":"00ff","name:2":":Name\n100%"})"
        "\n]\n");
}

// Nothing that a database holds moves the cursor, turns the direction of writing or ends a line.
TEST_F(CliRunSmall, TablesKeepTheTerminalWhole) {
    runScript(database_,
              "delete from things;"
              "insert into things (id, name) values (1, char(27) || '[2J' || char(13, 9, 10, 127)),"
              " (2, 'a' || char(0x202A) || 'b' || char(0x202E) || 'c' || char(0x200E, 0x2066, 0x2029)),"
              " (3, 'e' || char(0x301) || ' 日本' || char(0x200B, 0x1F600)), (4, '~ !');");
    EXPECT_EQ(outputOf(command({}), {.text = queryText({1, 2}, {})}),
              "id | name\n"
              "---+----------------------------------\n"
              " 1 | \\u001b[2J\\r\\t\\n\\u007f\n"
              " 2 | a\\u202ab\\u202ec\\u200e\\u2066\\u2029\n"
              " 3 | e\u0301 日本\u200B😀\n"
              " 4 | ~ !\n"
              "(4 rows)\n");
}

TEST_F(CliRunSmall, LimitStopsEarly) {
    const std::string query = queryText({1}, {});
    EXPECT_EQ(outputOf(command({"--limit=0"}), {.text = query}), "id\n--\n(0 rows)\n");
    EXPECT_EQ(outputOf(command({"--limit=1"}), {.text = query}), "id\n--\n 1\n(1 row)\n");
    EXPECT_EQ(outputOf(command({"--limit=9223372036854775807"}), {.text = query}),
              "id\n--\n 1\n 2\n 3\n 4\n(4 rows)\n");
    EXPECT_EQ(outputOf(command({"--limit=0", "--format=json"}), {.text = query}), "[]\n");
    EXPECT_EQ(outputOf(command({"--limit=0", "--format=csv"}), {.text = query}), "id\n");
}

TEST_F(CliRunSmall, ConstantsMeanWhatTheySay) {
    EXPECT_EQ(numbers({{2, "Equal", "O'Hara \"x\", ;--"}}), "2 ");
    EXPECT_EQ(numbers({{2, "Equal", "x' or '1'='1"}}), "");
    EXPECT_EQ(numbers({{2, "Contains", "' or 1=1 --"}}), "");
    EXPECT_EQ(numbers({{2, "Contains", ":Name"}}), "3 ");
    EXPECT_EQ(numbers({{2, "InList", "plain, \"O'Hara \"\"x\"\", ;--\""}}), "1 2 ");
    EXPECT_EQ(numbers({{1, "InList", "1, 3"}}), "1 3 ");
    EXPECT_EQ(numbers({{3, "Least", "2"}}), "1 3 ");
    EXPECT_EQ(numbers({{4, "Least", "45351"}}), "1 2 ");           // 2024-02-29
    EXPECT_EQ(numbers({{5, "Equal", "45351.33680555556"}}), "1 "); // 08:05
    EXPECT_EQ(numbers({{6, "Equal", "True"}}), "1 3 ");
    EXPECT_EQ(refusal({{1, "InList", "1,2) or (1=1"}}), "Invalid value \"2) or (1=1\" for \"Number\"");
    EXPECT_EQ(refusal({{6, "Equal", "open or 1"}}), "Invalid value \"open or 1\" for \"Open\"");
    EXPECT_EQ(refusal({{2, "Equal", "\xFF\xFE"}}), "The statement is not valid UTF-8");
    EXPECT_EQ(refusal({{2, "Equal", std::string("a\0b", 3)}}), "The statement holds a zero character");
}

TEST_F(CliRunSmall, ParametersAreBound) {
    const auto one = [this](int field, const std::string& op, const std::string& value) {
        return numbers({{field, op, "P", true}}, {"--param", "p=" + value});
    };
    EXPECT_EQ(one(2, "Equal", "O'Hara \"x\", ;--"), "2 ");
    EXPECT_EQ(one(2, "Equal", "x' or '1'='1"), "");
    EXPECT_EQ(one(2, "Contains", "100%"), "3 ");
    EXPECT_EQ(one(2, "Contains", "@v=:p?"), "");
    EXPECT_EQ(one(2, "Equal", "日本 é"), "4 ");
    EXPECT_EQ(one(2, "InList", "plain"), "1 ");
    EXPECT_EQ(one(1, "Equal", " +3 "), "3 ");
    EXPECT_EQ(one(1, "Contains", "2"), "2 ");
    EXPECT_EQ(one(3, "Least", "25e-1"), "1 3 ");
    EXPECT_EQ(one(4, "Equal", "29 February 2024"), "1 ");
    EXPECT_EQ(one(5, "Least", "2024-02-29 8:05"), "1 2 ");
    EXPECT_EQ(one(5, "Equal", "2024-03-01"), "2 ");
    EXPECT_EQ(one(6, "Equal", "TRUE"), "1 3 ");
    EXPECT_EQ(one(7, "Equal", ""), "2 ");

    // One name, two types and two patterns; and one that stands in a disabled row only.
    const std::vector<Row> twice = {
        {1, "Least", "P", true}, {2, "Contains", "p", true}, {2, "Equal", "Other", true, false}};
    EXPECT_EQ(numbers(twice, {"--param=P=1"}), "3 ");
    EXPECT_EQ(numbers(twice, {"--param=P=1", "--param=other=x"}), "3 ");
}

TEST_F(CliRunSmall, ParametersAreChecked) {
    const auto one = [this](int field, const std::string& value) {
        return refusal({{field, "Equal", "P", true}}, {"--param", "P=" + value});
    };
    EXPECT_EQ(one(1, "1 or 1=1"), "Invalid value \"1 or 1=1\" for \"Number\"");
    EXPECT_EQ(one(3, "1,5"), "Invalid value \"1,5\" for \"Amount\"");
    EXPECT_EQ(one(4, "2023-02-29"), "Invalid value \"2023-02-29\" for \"Made on\"");
    EXPECT_EQ(one(5, ""), "Invalid value \"\" for \"Seen at\"");
    EXPECT_EQ(one(6, "yes"), "Invalid value \"yes\" for \"Open\"");
    EXPECT_EQ(one(2, "\xC3"), "The value of parameter P is not valid UTF-8");

    const std::vector<Row> rows = {{1, "Equal", "A", true}, {2, "Equal", "b", true}, {3, "Equal", "a", true}};
    std::filesystem::remove(database_); // none of this needs it
    EXPECT_EQ(refusal(rows), "No value for these parameters (use --param): A, b");
    EXPECT_EQ(refusal(rows, {"--param=a=1"}), "No value for these parameters (use --param): b");
    EXPECT_EQ(refusal(rows, {"--param=a=1", "--param=B=x", "--param=Cc=", "--param=d=4"}),
              "The query has no such parameters: Cc, d");
    EXPECT_EQ(refusal({{1, "Equal", "x) or (1=1", true}}), "Invalid value \"x) or (1=1\" for \"Number\"");
}

TEST_F(CliRunSmall, OnlyOneReadingStatementRuns) {
    const std::string before = readFile(database_);
    EXPECT_EQ(refusal({{1, "Bad", ""}}), "The text holds more than one statement");
    EXPECT_EQ(readFile(database_), before);
    EXPECT_EQ(numbers({}), "1 2 3 4 ");
}

TEST_F(CliRunSmall, DatabasesThatCannotBeOpenedAreNamed) {
    const auto error = [this](const std::string& file) {
        return errorOf({"run", file, model_, "-"}, {.text = queryText({1}, {})});
    };
    const std::string missing = folder_ / "missing.sqlite";
    EXPECT_EQ(error(missing), "Cannot open database \"" + missing + "\": No such file or directory");
    EXPECT_FALSE(std::filesystem::exists(missing));
    EXPECT_EQ(error(":memory:"), "Cannot open database \":memory:\": No such file or directory");
    EXPECT_EQ(error(model_), "Cannot open database \"" + model_ + "\": file is not a database");
    EXPECT_EQ(error(samples), "Cannot open database \"" + samples + "\": it is a directory");
    runScript(database_, "drop table things;");
    EXPECT_EQ(error(database_), "no such table: things");
}

} // namespace
} // namespace lumora::tests
