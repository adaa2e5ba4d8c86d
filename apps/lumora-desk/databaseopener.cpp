#include "apps/lumora-desk/databaseopener.h"

#include "lumora/platform/errors.h"
#include "lumora/platform/text_file.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/modelfiller.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace lumora::desk {

namespace {

std::string sessionName(const DatabaseParameters& database) {
    const QString base = QFileInfo(database.databaseName).completeBaseName();
    return (base.isEmpty() ? database.databaseName : base).toStdString();
}

void loadModel(TVDBStructure& model, const OpenRequest& request, Engine engine) {
    try {
        model.LoadFromStrings(TStringList(ReadTextFile(request.modelFile.toStdString())));
    } catch (const EFileError&) {
        throw; // it names the file
    } catch (const Exception& error) {
        throw Exception("The model file \"" + request.modelFile.toStdString() +
                        "\" cannot be read: " + error.what());
    }
    if (model.GetEmpty())
        throw Exception("The model file \"" + request.modelFile.toStdString() + "\" holds no fields");
    prepareModel(model, engine);
}

} // namespace

ModelProvider::ModelProvider(const DatabaseParameters& database) : name_(sessionName(database)) {
    session_.registerDatabase(name_, database);
    info_.SetDatabaseName(name_);
    offerForeignKeys(info_, session_);
}

Engine ModelProvider::engine() {
    return session_.open(name_).engine();
}

QStringList ModelProvider::fill(TVDBStructure& model) {
    QStringList remarks;
    for (const std::string& remark : fillModel(model, info_, session_))
        remarks.append(QString::fromStdString(remark));
    model.SetDatabaseInfo(nullptr);
    return remarks;
}

void ModelProvider::serve(TVDBStructure& model) {
    model.SetDatabaseInfo(&info_);
    info_.SetDatabaseName(name_); // the model's text may have named another one
}

OpenedDatabase openDatabase(const OpenRequest& request) {
    ModelProvider provider(request.database);
    // Opened also when the model comes from a file: better now than at the first question.
    OpenedDatabase opened{request, provider.engine(), std::make_unique<TVDBStructure>()};
    if (request.modelFile.isEmpty())
        opened.remarks = provider.fill(*opened.model);
    else
        loadModel(*opened.model, request, opened.engine);
    if (opened.model->GetFieldCount() == 0)
        throw DatabaseError(DatabaseError::Kind::NotFound,
                            QCoreApplication::translate("lumora::desk", "%1 has no tables that can be asked")
                                .arg(displayName(request.database)));
    return opened;
}

QString displayName(const DatabaseParameters& database) {
    if (database.driver == QLatin1StringView("QSQLITE"))
        return QFileInfo(database.databaseName).fileName();
    if (database.hostName.isEmpty())
        return database.databaseName;
    return QCoreApplication::translate("lumora::desk", "%1 on %2")
        .arg(database.databaseName, database.hostName);
}

} // namespace lumora::desk
