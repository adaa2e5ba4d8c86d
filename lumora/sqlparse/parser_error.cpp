#include "lumora/sqlparse/parser_error.h"

#include <string>

namespace lumora {

ESQLParserError::ESQLParserError(TMessageId message, int line, std::string_view argument)
    : EVLumoraError(message, FormatText(Message(message), {argument}) + "\r\nLine:" + std::to_string(line)),
      Line(line) {}

} // namespace lumora
