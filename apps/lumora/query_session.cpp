#include "apps/lumora/query_session.h"

#include "apps/lumora/standard_streams.h"
#include "lumora/model/Lmglobal.h"
#include "lumora/platform/text_file.h"
#include "lumora/querytext/query_text.h"
#include "lumora/reading/read_sql.h"
#include "lumora/support/string_helpers.h"

namespace lumora::cli {

TStringList readLines(const std::string& fileName) {
    return TStringList(fileName == "-" ? readStandardInput() : ReadTextFile(fileName));
}

namespace {

// The names of an enumeration's values, for messages.
template <typename E>
std::string namesOf() {
    std::string names;
    for (const std::string_view name : TEnumNames<E>::Names)
        names.append(names.empty() ? "" : ", ").append(name);
    return names;
}

template <typename E>
E parseEnum(std::string_view text, std::string_view option) {
    const int ordinal = EnumOrdinal<E>(Trim(text));
    if (ordinal < 0)
        throw UsageError("Option " + std::string(option) + " does not know \"" + std::string(text) +
                         "\", only " + namesOf<E>());
    return static_cast<E>(ordinal);
}

TSQLOptions parseSQLOptions(std::string_view list) {
    TSQLOptions options;
    if (Trim(list).empty())
        return options;
    for (const std::string_view name : SplitText(list, ','))
        options.Include(parseEnum<TSQLOption>(name, "--options"));
    return options;
}

} // namespace

QueryOptions::QueryOptions(const Arguments& arguments)
    : strict(arguments.has("--strict")), saveTitles(!arguments.has("--no-titles")) {
    if (const std::string* const name = arguments.value("--syntax"))
        syntax = parseEnum<TSQLSyntax>(*name, "--syntax");
    if (const std::string* const name = arguments.value("--dialect"))
        dialect = parseEnum<TSQLDialect>(*name, "--dialect");
    if (const std::string* const list = arguments.value("--options"))
        sqlOptions = parseSQLOptions(*list);
    if (const std::string* const name = arguments.value("--main-table"))
        mainTable = *name;
}

QuerySession::QuerySession(const std::string& modelFile) {
    model_.LoadFromStrings(readLines(modelFile));
    query_.ModelKnown();
}

void QuerySession::prepare(const QueryOptions& options) {
    // The query would pass over a table that does not exist, and start from another one.
    if (!options.mainTable.empty() && !model_.TableByName(tnName, options.mainTable))
        throw EVDBStructError(dseNoTable, {options.mainTable});
    query_.SetSQLSyntax(options.syntax);
    query_.SetDialect(options.dialect);
    if (!options.mainTable.empty())
        query_.SetMainTableName(options.mainTable);
    query_.SetStrict(options.strict);
    if (options.strict) { // with seconds, as "run" and every engine write them
        model_.GetSQLFormats().SetTime("hh:nn:ss");
        model_.GetSQLFormats().SetDateTime("yyyy-mm-dd hh:nn:ss");
    }
    query_.SetSQLOptions(options.sqlOptions.value_or(DefaultSQLOptions));
}

void QuerySession::readQuery(const std::string& queryFile, const QueryOptions& options) {
    prepare(options);
    const TStringList lines = readLines(queryFile);
    if (Trim(lines.GetText()).empty())
        throw EFileError("\"" + queryFile + "\" is empty, which is no query");
    ReadQueryText(query_, lines, options.saveTitles ? &titles_ : nullptr);
    // Again, for the text may hold others.
    if (options.sqlOptions)
        query_.SetSQLOptions(*options.sqlOptions);
    if (!options.mainTable.empty())
        query_.SetMainTableName(options.mainTable);
}

void QuerySession::readSQL(const std::string& sqlFile, const QueryOptions& options) {
    prepare(options);
    query_.SetSaveSQLOptions(options.strict);
    ReadSQL(query_, readLines(sqlFile), options.saveTitles ? &titles_ : nullptr);
}

std::string QuerySession::queryText(const QueryOptions& options) {
    TStringList lines;
    WriteQueryText(query_, lines, options.saveTitles ? &titles_ : nullptr);
    return lines.GetText();
}

} // namespace lumora::cli
