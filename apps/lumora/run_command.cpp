// The command "run": a query's rows from an SQLite file.

#include "apps/lumora/commands.h"
#include "apps/lumora/qt_application.h"
#include "apps/lumora/query_session.h"
#include "apps/lumora/row_output.h"
#include "apps/lumora/run_parameters.h"
#include "platform/ascii.h"
#include "platform/convert.h"
#include "qtsql/databaseconnection.h"
#include "qtsql/queryrunner.h"

#include <cstdint>

namespace lumora::cli {

namespace {

std::int64_t parseLimit(const std::string& text) {
    const std::optional<std::int64_t> limit = TryStrToInt64(text);
    if (text.find_first_not_of("0123456789") != std::string::npos || !limit)
        throw UsageError("Option --limit needs a number of rows, not \"" + text + "\"");
    return *limit;
}

struct RunOptions {
    explicit RunOptions(const Arguments& arguments)
        : query(arguments), parameters(parseParameters(arguments.values("--param"))) {
        query.strict = true;
        if (const std::string* const name = arguments.value("--format"))
            format = parseRowFormat(*name);
        if (const std::string* const text = arguments.value("--limit"))
            limit = parseLimit(*text);
    }

    QueryOptions query;
    std::vector<GivenParameter> parameters;
    RowFormat format = RowFormat::Table;
    std::int64_t limit = -1;
};

void printRows(const Arguments& arguments, Output& output) {
    const RunOptions options(arguments);
    QuerySession session(arguments[1]);
    const DatabaseParameters database = parseDatabase(arguments[0]);
    prepareModel(session.model(), engineOf(database.driver));
    session.readQuery(arguments[2], options.query);
    QueryParameters parameters(session.panel().GetQResult());
    session.panel().BuildQuery();
    std::string sql = session.panel().GetQResult().GetSQL().GetText();
    sql.pop_back(); // the line feed that ends the last line
    const QVariantMap values = parameters.bind(sql, options.parameters, session.model().GetSQLFormats());
    const QString statement = decodeText(sql, "The statement");

    const QtApplication application;
    const DatabaseConnection connection(database);
    const std::unique_ptr<RowWriter> writer = makeRowWriter(options.format, output);
    runQuery(connection.connection(), statement, values,
             {[&](const QStringList& names) { writer->columns(names); },
              [&](const QList<QVariant>& row) { writer->row(row); }},
             options.limit);
    writer->finish();
}

std::vector<OptionSpec> runOptionSpecs() {
    std::vector<OptionSpec> options = queryOptionSpecs();
    for (OptionSpec& option : options)
        if (option.name == "--strict")
            option.help = "\"run\" is always strict";
    options.push_back(
        {"--param", "NAME=VALUE", "a value for a parameter of the query; once for each parameter"});
    options.push_back({"--limit", "N", "stop after N rows"});
    options.push_back({"--format", "FORMAT",
                       "table: aligned columns (the default), NULL as NULL,\n"
                       "  line breaks and control characters as \\n, \\u0007\n"
                       "csv: commas, a line of names first, NULL as nothing, an empty\n"
                       "  text as \"\"\n"
                       "json: an array with an object for each row; of several\n"
                       "  columns with one name the second is called NAME:2"});
    return options;
}

} // namespace

Command runCommand() {
    return {"run",
            {"DATABASE", "MODEL", "QUERY"},
            "run a query on an SQLite database",
            "DATABASE is an SQLite file, which is opened for reading only.\n"
            "QUERY is read against the data model MODEL.",
            runOptionSpecs(),
            printRows};
}

} // namespace lumora::cli
