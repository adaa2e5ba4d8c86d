// The items of a list value, each turned into another text.
#pragma once

#include "lumora/query/value_text.h"

#include <string>
#include <string_view>

namespace lumora {

// An empty item stays one.
template <typename TConvert>
std::string ConvertItems(std::string_view list, TConvert convert) {
    std::string text;
    bool first = true;
    for (const std::string& item : SplitListValue(list)) {
        text.append(first ? "" : ",").append(item.empty() ? item : convert(item));
        first = false;
    }
    return text;
}

} // namespace lumora
