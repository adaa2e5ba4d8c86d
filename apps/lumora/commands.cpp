#include "apps/lumora/commands.h"

#include "apps/lumora/query_session.h"
#include "sqlparse/Vsqlpars.h"
#include "sqlparse/parse_tree_text.h"

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
    session.panel().BuildQuery();
    output.write(session.panel().GetQResult().GetSQL().GetText());
}

void printText(const Arguments& arguments, Output& output) {
    const QueryOptions options(arguments);
    QuerySession session(arguments[0]);
    session.readQuery(arguments[1], options);
    TStringList lines;
    session.panel().SaveToStrings(lines);
    output.write(lines.GetText());
}

void printWords(const Arguments& arguments, Output& output) {
    const QueryOptions options(arguments);
    QuerySession session(arguments[0]);
    session.readQuery(arguments[1], options);
    output.write(session.panel().GetQueryText());
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
    TStringList lines;
    session.panel().SaveToStrings(lines);
    output.write(lines.GetText());
}

std::vector<OptionSpec> textOptionSpecs() {
    std::vector<OptionSpec> options = queryOptionSpecs();
    options.push_back({"--no-titles", "", "leave the titles out, whatever the text says"});
    return options;
}

std::vector<Command> makeCommands() {
    return {
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

const Command* findCommand(std::string_view name) {
    for (const Command& command : commands())
        if (command.name == name)
            return &command;
    return nullptr;
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
    if (std::any_of(command.arguments.begin(), command.arguments.end(),
                    [](std::string_view name) { return name == "MODEL" || name == "SQLFILE"; }))
        text += "\"-\" in the place of one text file stands for standard input.\n";
    return text + "\nOptions:\n" + optionLines(command.options);
}

std::string helpText() {
    std::string text = "usage: lumora COMMAND [OPTIONS] ARGUMENTS\n\n"
                       "Turns saved queries over a data model into SQL, into words, or into rows, and SQL "
                       "into queries.\n\nCommands:\n";
    for (const Command& command : commands()) {
        std::string line = "  " + std::string(command.name);
        line.resize(10, ' ');
        text.append(line).append(command.summary).append("\n");
    }
    return text + "\n\"lumora COMMAND --help\" tells more about a command.\n"
                  "The exit status is 0 for success, 1 for a failure and 2 for bad usage.\n";
}

void checkStandardInput(const Command& command, const Arguments& arguments) {
    bool taken = false;
    for (std::size_t i = 0; i < command.arguments.size(); ++i) {
        const std::string_view name = command.arguments[i];
        if (arguments[i] != "-" || name == "FROM" || name == "TO")
            continue;
        if (name == "DATABASE")
            throw UsageError("A database cannot be read from standard input");
        if (taken)
            throw UsageError("Only one argument can be \"-\"");
        taken = true;
    }
}

} // namespace lumora::cli
