// A data model made from a database, ready to be used.
#pragma once

#include "lumora/metadata/Vbdeinfo.h"
#include "lumora/model/structure.h"
#include "lumora/qtsql/databasesession.h"

#include <chrono>
#include <string>
#include <vector>

namespace lumora {

// Both read the provider's database from this session, whichever it had before, and leave the provider with
// it.

// Has the provider offer the foreign keys of its database as links, ahead of what a handler that is there
// makes of them. A key whose names a link line cannot hold is left to fillModel.
void offerForeignKeys(TVBDEInfo& info, DatabaseSession& session);

struct FillSettings {
    // How long all questions together may take that look at the rows: how days are kept, which values there
    // are to choose from. 0: none is asked.
    std::chrono::milliseconds lookingTime = std::chrono::seconds(4);
};

// Makes `info` the model's provider and fills the model from its database: tables, fields and, from the
// foreign keys, links, with captions, operators and lists of values that people can use (docs/databases.md).
// Returns remarks for the person: what was left out, and why. DatabaseError when the database cannot be read;
// the model is then as it was.
std::vector<std::string> fillModel(TVCustomDBStructure& model, TVBDEInfo& info, DatabaseSession& session,
                                   const FillSettings& settings = {});

} // namespace lumora
