// The command "fill": the data model of a database.

#include "apps/lumora/commands.h"
#include "apps/lumora/qt_application.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/modelfiller.h"

#include <QFileInfo>

#include <cstdio>

namespace lumora::cli {

namespace {

// The model keeps the name of its database: the file's without its ending, or the server's.
std::string nameOf(const DatabaseParameters& parameters) {
    const QFileInfo file(parameters.databaseName);
    return (file.completeBaseName().isEmpty() ? parameters.databaseName : file.completeBaseName())
        .toStdString();
}

void printFilledModel(const Arguments& arguments, Output& output) {
    const DatabaseParameters database = parseDatabase(arguments[0]);
    const std::string name = nameOf(database);
    const QtApplication application;
    DatabaseSession session;
    session.registerDatabase(name, database);
    TVBDEInfo info;
    info.SetDatabaseName(name);
    offerForeignKeys(info, session);
    TVDBStructure model;
    for (const std::string& remark : fillModel(model, info, session))
        std::fprintf(stderr, "lumora: %s\n", remark.c_str());
    if (model.GetFieldCount() == 0)
        throw DatabaseError(DatabaseError::Kind::NotFound,
                            QStringLiteral("\"%1\" has no tables that can be asked").arg(database.label()));
    TStringList lines;
    model.SaveToStrings(lines);
    output.write(lines.GetText());
}

} // namespace

Command fillCommand() {
    return {"fill",
            {"DATABASE"},
            "make a data model from a database",
            "Writes a data model with the tables that DATABASE has, their columns, and links\n"
            "for its foreign keys. DATABASE is an SQLite file or a URL,\n"
            "postgresql://user@host:port/database; nothing in it is changed. Remarks on\n"
            "what was left out go to standard error.",
            {},
            printFilledModel};
}

} // namespace lumora::cli
