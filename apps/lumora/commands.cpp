#include "apps/lumora/commands.h"

#include "apps/lumora/query_session.h"
#include "lumora/query/query_result.h"
#include "lumora/screen/query_screen.h"
#include "lumora/sqlparse/Vsqlpars.h"
#include "lumora/sqlparse/parse_tree_text.h"

#include <algorithm>

namespace lumora::cli {

namespace {

void printModel(const Arguments& arguments, Output& output) {
    TVDBStructure model;
    model.LoadFromStrings(readLines(arguments[0]));
    TStringList lines;
    model.SaveToStrings(lines);
    output.write(lines.GetText());
}

void printSQL(const Arguments& arguments, Output& output) {
    const QueryOptions options(arguments);
    QuerySession session(arguments[0]);
    session.readQuery(arguments[1], options);
    session.query().BuildQuery();
    output.write(session.query().GetQResult().GetSQL().GetText());
}

void printText(const Arguments& arguments, Output& output) {
    const QueryOptions options(arguments);
    QuerySession session(arguments[0]);
    session.readQuery(arguments[1], options);
    output.write(session.queryText(options));
}

void printWords(const Arguments& arguments, Output& output) {
    const QueryOptions options(arguments);
    QuerySession session(arguments[0]);
    session.readQuery(arguments[1], options);
    TQueryScreen screen(session.query());
    screen.GetTitles() = session.titles();
    output.write(screen.GetQueryText());
}

void printPath(const Arguments& arguments, Output& output) {
    TVDBStructure model;
    model.LoadFromStrings(readLines(arguments[0]));
    const TDSPath& path = model.GetPath(arguments[1], arguments[2]);
    for (int i = 0; i < path.GetTableCount(); ++i)
        output.write(path.GetTable(i)->GetAlias() + '\n');
}

void printParseTree(const Arguments& arguments, Output& output) {
    TVSQLParser parser;
    parser.SetSQL(readLines(arguments[0]));
    parser.Parse();
    TStringList lines;
    ParseTreeToStrings(parser.GetResult(), lines);
    output.write(lines.GetText());
}

void printVisual(const Arguments& arguments, Output& output) {
    const QueryOptions options(arguments);
    QuerySession session(arguments[0]);
    session.readSQL(arguments[1], options);
    output.write(session.queryText(options));
}

std::vector<OptionSpec> textOptionSpecs() {
    std::vector<OptionSpec> options = queryOptionSpecs();
    options.push_back({"--no-titles", "", "leave the titles out, whatever the text says"});
    return options;
}

std::vector<Command> makeCommands() {
    std::vector<Command> all = {
        {"model",
         {"MODEL"},
         "write a data model in the current version of its format",
         "MODEL may be of any version.",
         {},
         printModel},
        fillCommand(),
        {"sql",
         {"MODEL", "QUERY"},
         "build the SQL of a query",
         "QUERY is read against the data model MODEL.",
         queryOptionSpecs(),
         printSQL},
        {"text",
         {"MODEL", "QUERY"},
         "write a query in the current version of its format",
         "QUERY may be of any version; it is read against the data model MODEL.",
         textOptionSpecs(),
         printText},
        {"words",
         {"MODEL", "QUERY"},
         "say a query in words",
         "QUERY is read against the data model MODEL.",
         queryOptionSpecs(),
         printWords},
        {"path",
         {"MODEL", "FROM", "TO"},
         "show the tables that join two tables",
         "FROM and TO are aliases of tables of the data model MODEL. The shortest chain\n"
         "of links between them is written, one alias a line.",
         {},
         printPath},
        runCommand(),
        {"parse",
         {"SQLFILE"},
         "show the parse tree of a SELECT statement",
         "SQLFILE holds one statement.",
         {},
         printParseTree},
        {"visual",
         {"MODEL", "SQLFILE"},
         "turn a SELECT statement into a query",
         "SQLFILE holds one statement; it is read onto the data model MODEL.",
         textOptionSpecs(),
         printVisual},
    };
    const std::vector<Command> queries = queriesCommands();
    all.insert(all.end(), queries.begin(), queries.end());
    return all;
}

// What "-" may stand for.
bool isTextFile(std::string_view argument) {
    return argument == "MODEL" || argument == "QUERY" || argument == "SQLFILE";
}

std::string_view firstWord(std::string_view name) {
    return name.substr(0, name.find(' '));
}

// The options' names in one column, their help in the next.
std::string optionLines(std::span<const OptionSpec> options) {
    constexpr std::size_t helpColumn = 24;
    std::string text;
    const auto add = [&](std::string_view name, std::string_view valueName, std::string_view help) {
        std::string line = "  " + std::string(name);
        if (!valueName.empty())
            line.append(" ").append(valueName);
        line.resize(std::max(line.size() + 2, helpColumn), ' ');
        for (const char c : help) {
            line += c;
            if (c == '\n')
                line.append(helpColumn, ' ');
        }
        text += line + '\n';
    };
    for (const OptionSpec& option : options)
        add(option.name, option.valueName, option.help);
    add(helpOption, "", "show this help");
    return text;
}

} // namespace

std::vector<OptionSpec> queryOptionSpecs() {
    return {
        {"--syntax", "SYNTAX", "ssSQL1 (joins in WHERE), ssSQL2 (JOIN clauses; the default)\nor ssOracle"},
        {"--dialect", "DIALECT",
         "sdSQLite, sdPostgreSQL, sdMySQL or sdOracle: the engine whose\n"
         "SQL is written and read; \"run\" knows it (default sdStandard)"},
        {"--options", "LIST",
         "of soASCIIRFields, soSelectDistinct, soQuoteAliases,\n"
         "soBracketJoins, soBracketConditions and soSortByNames, with\n"
         "commas between; \"\" for none; wins over what the query says\n"
         "(default soASCIIRFields,soSelectDistinct)"},
        {"--main-table", "NAME", "the table that the query starts from"},
        {"--strict", "", "refuse values that could change what the statement means"}};
}

std::span<const Command> commands() {
    static const std::vector<Command> all = makeCommands();
    return all;
}

const Command* findCommand(std::span<const std::string> words) {
    for (const Command& command : commands())
        if (const std::size_t length = nameLength(command);
            length <= words.size() && command.name == (length == 1 ? words[0] : words[0] + ' ' + words[1]))
            return &command;
    return nullptr;
}

std::size_t nameLength(const Command& command) {
    return firstWord(command.name) == command.name ? 1 : 2;
}

bool isGroup(std::string_view word) {
    return std::any_of(commands().begin(), commands().end(), [&](const Command& command) {
        return nameLength(command) == 2 && firstWord(command.name) == word;
    });
}

std::string usageLine(const Command& command) {
    std::string line = "usage: lumora " + std::string(command.name);
    if (!command.options.empty())
        line += " [OPTIONS]";
    for (const std::string_view argument : command.arguments)
        line.append(" ").append(argument);
    return line + '\n';
}

std::string usageLine() {
    return "usage: lumora COMMAND [OPTIONS] ARGUMENTS (lumora --help lists the commands)\n";
}

std::string helpText(const Command& command) {
    std::string text = usageLine(command) + '\n';
    std::string summary(command.summary);
    summary[0] = static_cast<char>(summary[0] - 'a' + 'A');
    text.append(summary).append(".\n").append(command.details).append("\n");
    if (std::any_of(command.arguments.begin(), command.arguments.end(), isTextFile))
        text += "\"-\" in the place of one text file stands for standard input.\n";
    return text + "\nOptions:\n" + optionLines(command.options);
}

std::string helpText(std::string_view group) {
    std::string text = group.empty()
                           ? "usage: lumora COMMAND [OPTIONS] ARGUMENTS\n\n"
                             "Turns saved queries over a data model into SQL, into words, or into "
                             "rows, and SQL into queries.\n"
                           : "usage: lumora " + std::string(group) + " COMMAND [OPTIONS] ARGUMENTS\n";
    text += "\nCommands:\n";
    for (const Command& command : commands()) {
        if (!group.empty() && (nameLength(command) == 1 || firstWord(command.name) != group))
            continue;
        std::string line = "  " + std::string(command.name);
        line.resize(18, ' ');
        text.append(line).append(command.summary).append("\n");
    }
    return text + "\n\"lumora COMMAND --help\" tells more about a command.\n"
                  "The exit status is 0 for success, 1 for a failure and 2 for bad usage.\n";
}

void checkStandardInput(const Command& command, const Arguments& arguments) {
    bool taken = false;
    for (std::size_t i = 0; i < command.arguments.size(); ++i) {
        const std::string_view name = command.arguments[i];
        if (arguments[i] != "-")
            continue;
        if (name == "DATABASE")
            throw UsageError("A database cannot be read from standard input");
        if (name == "BASE")
            throw UsageError("A query base cannot be read from standard input");
        if (!isTextFile(name))
            continue;
        if (taken)
            throw UsageError("Only one argument can be \"-\"");
        taken = true;
    }
}

} // namespace lumora::cli
