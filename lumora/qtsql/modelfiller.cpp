#include "lumora/qtsql/modelfiller.h"

#include "lumora/qtsql/boundedqueries.h"
#include "lumora/qtsql/columnsampling.h"
#include "lumora/qtsql/databasecontents.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/filledcaptions.h"
#include "lumora/qtsql/filledmodel.h"
#include "lumora/qtsql/foreignkeylines.h"
#include "lumora/qtsql/valuelists.h"

namespace lumora {

namespace {

// What was read of a database, as a model asks for it; links come from the real provider and its handlers.
class ContentsInfo : public TVDBInfo {
public:
    ContentsInfo(const DatabaseContents& contents, TVDBInfo& links) : contents_(contents), links_(links) {}
    ~ContentsInfo() override { BeginDestruction(); }

    void TablesByDatabase(TStringList& tables) override {
        tables.Clear();
        for (const SourceTable& table : contents_.tables)
            tables.Add(table.name);
    }
    void FieldsByTable(const std::string& name, TDBFieldList& fields) override {
        if (const SourceTable* const table = contents_.table(name))
            for (const SourceColumn& column : table->columns)
                fields.Add({column.name, column.size, column.type == ftUnknown ? ftString : column.type});
    }
    void LinksByDatabase(TStringList& links) override {
        links_.GetLinksList(links);
        for (const ForeignKey& key : contents_.lostKeys)
            for (int i = links.Count() - 1; i >= 0; --i)
                if (links[i] == linkLine(key))
                    links.Delete(i);
    }
    void LoadInfo(TStringList&) override {} // the real provider has its settings

private:
    const DatabaseContents& contents_;
    TVDBInfo& links_;
};

// Gives the model another provider for a while.
class InPlaceOf {
public:
    InPlaceOf(TVCustomDBStructure& model, TVDBInfo& other, TVDBInfo& own) : model_(model), own_(own) {
        model_.SetDatabaseInfo(&other);
    }
    ~InPlaceOf() { model_.SetDatabaseInfo(&own_); }
    InPlaceOf(const InPlaceOf&) = delete;
    InPlaceOf& operator=(const InPlaceOf&) = delete;

private:
    TVCustomDBStructure& model_;
    TVDBInfo& own_;
};

DatabaseContents read(DatabaseSession& session, const std::string& name) {
    const DatabaseConnection& connection = session.open(name);
    try {
        return readContents(*openCatalogue(connection.connection()), connection.engine());
    } catch (const DatabaseError&) {
        session.checkConnection(name);
        throw;
    }
}

void look(DatabaseContents& contents, const DatabaseConnection& connection, const FillSettings& settings) {
    BoundedQueries queries(connection, settings.lookingTime);
    lookAtDates(contents, TableKind::Table, queries);
    findValueLists(contents, queries);
    lookAtDates(contents, TableKind::View, queries);
    if (queries.isTimeUp())
        contents.remarks.emplace_back("There was no time to look at all tables: some lists of values may be "
                                      "missing, and days may be compared otherwise than they are kept");
}

} // namespace

void offerForeignKeys(TVBDEInfo& info, DatabaseSession& session) {
    info.SetSession(session);
    info.OnLinksRequest = [&session, &info, others = info.OnLinksRequest](TVDBInfo& sender,
                                                                          TStringList& links) {
        for (const ForeignKey& key :
             openCatalogue(session.open(info.GetDatabaseName()).connection())->foreignKeys())
            if (fitsLinkLine(key))
                links.Add(linkLine(key));
        if (others)
            others(sender, links);
    };
}

std::vector<std::string> fillModel(TVCustomDBStructure& model, TVBDEInfo& info, DatabaseSession& session,
                                   const FillSettings& settings) {
    info.SetSession(session);
    info.ConnectionChanged(); // the tables may have changed since it was last asked
    model.SetDatabaseInfo(&info);
    DatabaseContents contents = read(session, info.GetDatabaseName());
    if (settings.lookingTime.count() > 0)
        look(contents, session.open(info.GetDatabaseName()), settings);
    nameColumns(contents);
    model.ReplaceModel([&] { // panels find their fields again in the finished model
        ContentsInfo provider(contents, info);
        const InPlaceOf inPlace(model, provider, info);
        model.RetriveDataModelInfo();
        finishModel(model, contents);
    });
    return contents.remarks;
}

} // namespace lumora
