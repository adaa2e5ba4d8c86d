// The last step of filling: what makes a model ready for use.
#pragma once

#include "lumora/model/structure.h"
#include "lumora/qtsql/databasecontents.h"

namespace lumora {

// The model has the contents' tables, columns and links as they are. Makes IDs, aliases and captions, quotes
// what needs it, adds roles, groups, operators and value editors. Its provider must know the columns.
void finishModel(TVCustomDBStructure& model, const DatabaseContents& contents);

} // namespace lumora
