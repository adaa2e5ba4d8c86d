// Foreign keys that one link between two tables cannot follow: the second and further keys between them, and
// keys of a table to itself. Each gets an alias of the table that it refers to, called after its column.
#pragma once

#include "lumora/model/structure.h"
#include "lumora/qtsql/databasecontents.h"

#include <string>
#include <vector>

namespace lumora {

struct RoleTable {
    TDSTable* table = nullptr;     // the alias
    TDSTable* referring = nullptr; // the only table that it is linked to
    std::string role;              // "arrival"
};

// Adds these tables with their fields, links them, and makes links Left where the key, or one on the way to
// it, may be missing. Links that the host has added stay as they are. The model's provider must know the
// tables' columns.
std::vector<RoleTable> addRoles(TVCustomDBStructure& model, const DatabaseContents& contents);

} // namespace lumora
