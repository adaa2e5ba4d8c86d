// Foreign keys as link lines.
#pragma once

#include "lumora/qtsql/catalogue.h"

#include <string>

namespace lumora {

// "bookings-customers:payer=id"
std::string linkLine(const ForeignKey& key);
// Whether a line can hold its names.
bool fitsLinkLine(const ForeignKey& key);

} // namespace lumora
