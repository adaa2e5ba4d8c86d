#include "apps/lumora/run_parameters.h"

#include "apps/lumora/arguments.h"
#include "lumora/platform/ascii.h"

namespace lumora::cli {

std::vector<GivenParameter> parseParameters(const std::vector<std::string_view>& texts) {
    std::vector<GivenParameter> given;
    for (const std::string_view text : texts) {
        const std::size_t equals = text.find('=');
        if (equals == 0 || equals == std::string_view::npos)
            throw UsageError("Option --param needs NAME=VALUE, not \"" + std::string(text) + '"');
        const GivenParameter parameter = {text.substr(0, equals), text.substr(equals + 1)};
        for (const GivenParameter& other : given)
            if (SameText(other.name, parameter.name))
                throw UsageError("Parameter " + std::string(parameter.name) + " is given twice");
        given.push_back(parameter);
    }
    return given;
}

} // namespace lumora::cli
