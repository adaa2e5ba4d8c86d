// The parameters of a query that is to run: what was given for them, and what the database gets.
#pragma once

#include "lumora/model/sql_formats.h"
#include "lumora/qtsql/engine.h"
#include "lumora/query/query_result.h"

#include <QString>
#include <QVariantMap>

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

struct GivenParameter {
    std::string_view name;
    std::string_view value;
};

// The text in Qt's form; DatabaseError "WHAT is not valid UTF-8" when it is not.
QString decodeText(std::string_view text, std::string_view what);

// To be made before the query is built. One name may stand in conditions of different types and with
// different patterns ("%@v%" and "@v"), so each parameter gets a placeholder of its own in the statement.
class QueryParameters {
public:
    explicit QueryParameters(const TQueryResult& result);

    // What to bind to the placeholders of the statement that was built. Names are compared without regard to
    // case. DatabaseError, Invalid, when the statement has parameters without a value, or the query has none
    // of a given name, for a value that is none of the parameter's type, and for a name that no strict
    // statement takes.
    QVariantMap bind(std::string_view sql, const std::vector<GivenParameter>& given,
                     const TSQLFormats& formats, Engine engine) const;

private:
    struct Entry {
        std::string name; // the parameter's own
        TSQLParam* parameter;
    };

    std::vector<Entry> entriesIn(std::string_view sql) const;
    void checkNames(const std::vector<Entry>& used, const std::vector<GivenParameter>& given) const;

    std::vector<Entry> entries_;
};

} // namespace lumora
