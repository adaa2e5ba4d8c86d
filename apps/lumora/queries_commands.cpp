// The commands "queries ...": named queries in a folder or a database.

#include "apps/lumora/commands.h"
#include "apps/lumora/query_base.h"
#include "apps/lumora/query_session.h"
#include "apps/lumora/row_output.h"
#include "lumora/querybase/stored_text.h"
#include "lumora/support/string_helpers.h"

#include <QSqlField>

#include <chrono>
#include <thread>

namespace lumora::cli {

namespace {

using Access = QueryBase::Access;

QVariant textCell(const std::string& text) {
    return QString::fromStdString(text);
}

QSqlRecord listColumns() {
    QSqlRecord columns;
    for (const char* const name : {"name", "description"})
        columns.append(QSqlField(QString::fromLatin1(name), QMetaType(QMetaType::QString)));
    return columns;
}

void listQueries(const Arguments& arguments, Output& output) {
    const std::string* const name = arguments.value("--format");
    const RowFormat format = name ? parseRowFormat(*name) : RowFormat::Table;
    const std::unique_ptr<RowWriter> writer = makeRowWriter(format, output);
    const QueryBase base(arguments[0], Access::ReadOnly);
    writer->columns(listColumns());
    for (int i = 0; i < base->GetCount(); ++i) {
        const std::string& description = base->GetQuery(i)->GetDescription();
        writer->row(
            {textCell(base->GetQuery(i)->GetQueryName()),
             textCell(format == RowFormat::Table ? ReplaceText(description, "\n", " ") : description)});
    }
    writer->finish();
}

void showQuery(const Arguments& arguments, Output& output) {
    const QueryBase base(arguments[0], Access::ReadOnly);
    TStringList content;
    base.query(arguments[1]).LoadContent(content);
    output.write(content.GetText());
}

TStringList readQueryText(const std::string& fileName) {
    TStringList content = readLines(fileName);
    if (const std::string fault = QueryTextFault(content); !fault.empty())
        throw Exception((fileName == "-" ? "Standard input" : "File \"" + fileName + '"') +
                        " is no query text: " + fault);
    return content;
}

// Whoever saves the query between our reading and our writing was first; then it is our turn.
void replaceQuery(const QueryBase& base, const std::string& name, const TStringList& content) {
    constexpr std::chrono::seconds patience(10);
    const auto start = std::chrono::steady_clock::now();
    for (;;) {
        try {
            if (base.find(name) < 0)
                base->AddQuery(name, content);
            else
                base.query(name).SaveContent(content);
            return;
        } catch (const EVQueryBaseError& error) {
            if (error.Code != qbeConflict || std::chrono::steady_clock::now() - start > patience)
                throw;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        base->Close();
        base->Open();
    }
}

void saveQuery(const Arguments& arguments, Output&) {
    const TStringList content = readQueryText(arguments[2]);
    const QueryBase base(arguments[0], Access::Create);
    if (base.find(arguments[1]) >= 0 && !arguments.has("--replace"))
        throw Exception(FormatText(Message(msgQueryExists), {arguments[1]}) + " (use --replace)");
    if (arguments.has("--replace"))
        replaceQuery(base, arguments[1], content);
    else
        base->AddQuery(arguments[1], content);
}

void deleteQuery(const Arguments& arguments, Output&) {
    const QueryBase base(arguments[0], Access::ReadWrite);
    base.query(arguments[1]);
    base->EraseQuery(base.find(arguments[1]));
}

constexpr std::string_view baseDetails = "BASE is a folder, an SQLite file, or the URL of a database\n"
                                         "(postgresql://user@host:port/database).";

} // namespace

std::vector<Command> queriesCommands() {
    return {
        {"queries list",
         {"BASE"},
         "list the queries of a query base",
         baseDetails,
         {{"--format", "FORMAT", "table (the default), csv or json, as \"run\" has them"}},
         listQueries},
        {"queries show", {"BASE", "NAME"}, "write a query of a query base", baseDetails, {}, showQuery},
        {"queries save",
         {"BASE", "NAME", "QUERY"},
         "keep a query in a query base",
         "BASE is a folder, an SQLite file, or the URL of a database\n"
         "(postgresql://user@host:port/database). A folder that does not exist is\n"
         "made, and so is a file whose name ends in .sqlite, .sqlite3 or .db.\n"
         "QUERY is kept as it is.",
         {{"--replace", "", "replace a query of that name"}},
         saveQuery},
        {"queries delete", {"BASE", "NAME"}, "delete a query of a query base", baseDetails, {}, deleteQuery},
    };
}

} // namespace lumora::cli
