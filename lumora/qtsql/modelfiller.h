// A data model made from a database, ready to be used.
#pragma once

#include "lumora/metadata/Vbdeinfo.h"
#include "lumora/model/structure.h"
#include "lumora/qtsql/databasesession.h"

namespace lumora {

// Both read the provider's database from this session, whichever it had before, and leave the provider with
// it.

// Has the provider offer the foreign keys of its database as links, ahead of what a handler that is there
// makes of them. A key whose names a link line cannot hold is left to fillModel.
void offerForeignKeys(TVBDEInfo& info, DatabaseSession& session);

// Makes `info` the model's provider and fills the model from its database: tables, fields and, from the
// foreign keys, links. Tables and columns that need quotes are quoted, aliases are plain names, captions can
// be read, fields stand in a group for each table, and every field has the operators that its type has use
// for. DatabaseError when the database cannot be read; the model then holds what was read so far.
void fillModel(TVCustomDBStructure& model, TVBDEInfo& info, DatabaseSession& session);

} // namespace lumora
