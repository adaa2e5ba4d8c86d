// What the SELECT parser raises, and when it does for depth.
#pragma once

#include "lumora/support/lumora_error.h"
#include "lumora/support/text_place.h"

#include <string_view>

namespace lumora {

// The message ends with a line break, "Line:" and the number of the line, from 1.
class ESQLParserError : public EVLumoraError {
public:
    // The code is the message's id.
    ESQLParserError(TMessageId message, const TTextPlace& place,
                    std::initializer_list<std::string_view> arguments = {});

    const int Line;
    const TTextPlace Place; // of the token
};

// Parentheses nest no deeper than this.
inline constexpr int MaxSQLNesting = 1000;

} // namespace lumora
