// What the SELECT parser raises, and when it does for depth.
#pragma once

#include "lumora/support/lumora_error.h"

#include <string_view>

namespace lumora {

// The message ends with a line break, "Line:" and the number of the line, from 1.
class ESQLParserError : public EVLumoraError {
public:
    // The code is the message's id.
    ESQLParserError(TMessageId message, int line, std::string_view argument = {});

    const int Line;
};

// Parentheses nest no deeper than this.
inline constexpr int MaxSQLNesting = 1000;

} // namespace lumora
