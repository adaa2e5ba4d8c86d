// The sample: a shop's database with a model and queries, in the user's own data to play with.
#pragma once

#include "apps/lumora-desk/databaseopener.h"

#include <QString>

namespace lumora::desk {

// The folder that the sample is made from, next to the program or where it was when the program was built;
// empty when it is not there.
QString sampleFolder();

// Makes the database and copies the model and the queries unless they are there already, and tells what to
// open. It takes a second or two. Exception when it cannot be made.
OpenRequest makeSample(const QString& from, const QString& to);
// Where the program keeps it.
QString sampleHome();

} // namespace lumora::desk
