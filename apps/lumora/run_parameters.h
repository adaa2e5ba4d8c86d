// The parameters of a query on the command line.
#pragma once

#include "lumora/qtsql/queryparameters.h"

#include <string_view>
#include <vector>

namespace lumora::cli {

// From "NAME=VALUE" each. UsageError for another form and for a name that stands twice.
std::vector<GivenParameter> parseParameters(const std::vector<std::string_view>& texts);

} // namespace lumora::cli
