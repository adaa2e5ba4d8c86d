// How the tables and columns of a filled model are called, and in which order people meet them.
#pragma once

#include "lumora/qtsql/databasecontents.h"

#include <string>
#include <vector>

namespace lumora {

// Gives every column its caption within its table and puts the columns by which people know a record first,
// those that refer to other tables behind the rest, and numbers that only tell records apart at the end.
// A column that refers to another table is called without "ID", unless another one has that caption.
void nameColumns(DatabaseContents& contents);

// The columns by which people know a record: one, or the first and last name of a person; none when the
// table has nothing of the kind.
std::vector<std::string> tellingColumns(const DatabaseContents& contents, const SourceTable& table);

// The part that a foreign key plays for the table that it refers to: "arrival" for arrival_airport_id. Empty
// for one that says no more than the table's name does.
std::string roleOf(const ForeignKey& key);

} // namespace lumora
