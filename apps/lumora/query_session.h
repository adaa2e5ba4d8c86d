// A data model and one query that is read against it.
#pragma once

#include "apps/lumora/arguments.h"
#include "lumora/model/Vdbstruc.h"
#include "lumora/query/query.h"
#include "lumora/titles/titles.h"

#include <optional>
#include <string>

namespace lumora::cli {

// The text of a file, or of standard input for "-". EFileError when it cannot be read.
TStringList readLines(const std::string& fileName);

// What the options of a command say about its query.
struct QueryOptions {
    // UsageError for a value that does not exist.
    explicit QueryOptions(const Arguments& arguments);

    TSQLSyntax syntax = ssSQL2;
    TSQLDialect dialect = sdStandard;
    std::optional<TSQLOptions> sqlOptions;
    std::string mainTable;
    bool strict;
    bool saveTitles;
};

class QuerySession {
public:
    explicit QuerySession(const std::string& modelFile);

    // EVDBStructError when the model has no table of the name in the options.
    void readQuery(const std::string& queryFile, const QueryOptions& options);
    // The same for a SELECT statement. A strict one's options are kept with the query: DISTINCT is among
    // them.
    void readSQL(const std::string& sqlFile, const QueryOptions& options);
    // The query as text, with its titles when the options say so.
    std::string queryText(const QueryOptions& options);

    TVDBStructure& model() { return model_; }
    TVQuery& query() { return query_; }
    const TTitles& titles() const { return titles_; }

private:
    void prepare(const QueryOptions& options);

    TVDBStructure model_;
    TVQuery query_{model_};
    TTitles titles_;
};

} // namespace lumora::cli
