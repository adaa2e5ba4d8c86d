// Opening a database and getting its data model.
#pragma once

#include "lumora/metadata/Vbdeinfo.h"
#include "lumora/model/structure.h"
#include "lumora/qtsql/databaseparameters.h"
#include "lumora/qtsql/databasesession.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace lumora::desk {

// Where the queries of a database are kept.
struct QueryPlace {
    enum class Kind { Folder, Table };

    Kind kind = Kind::Folder;
    QString name; // of the folder, or of the table (empty: the usual one)

    bool operator==(const QueryPlace&) const = default;
};

struct OpenRequest {
    DatabaseParameters database;
    QString modelFile; // empty: the model is made from the database
    QueryPlace queries;
};

struct OpenedDatabase {
    OpenRequest request;
    Engine engine = Engine::Other;        // behind ODBC too
    std::unique_ptr<TVDBStructure> model; // ready for the engine, without a provider
    QStringList remarks = {};             // what was left out of the model, and why
};

// What gives a model its lists of values. Several may live, on different threads, as long as each stays on
// its own.
class ModelProvider {
public:
    explicit ModelProvider(const DatabaseParameters& database);
    ModelProvider(const ModelProvider&) = delete;
    ModelProvider& operator=(const ModelProvider&) = delete;

    // Opens the database. DatabaseError when that cannot be done.
    Engine engine();
    // Fills the model and leaves it without a provider. What was left out, and why.
    QStringList fill(TVDBStructure& model);
    void serve(TVDBStructure& model);
    DatabaseSession& session() { return session_; }

private:
    const std::string name_;
    DatabaseSession session_;
    TVBDEInfo info_;
};

// Takes as long as the database takes, so it is for a thread of its own. DatabaseError, EFileError or what a
// model text raises.
OpenedDatabase openDatabase(const OpenRequest& request);

// What a window calls the database: the file's name, or "shop on db.example".
QString displayName(const DatabaseParameters& database);

} // namespace lumora::desk
