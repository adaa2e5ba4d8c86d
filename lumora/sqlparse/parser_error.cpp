#include "lumora/sqlparse/parser_error.h"

#include <string>

namespace lumora {

ESQLParserError::ESQLParserError(TMessageId message, const TTextPlace& place,
                                 std::initializer_list<std::string_view> arguments)
    : EVLumoraError(message,
                    FormatText(Message(message), arguments) + "\r\nLine:" + std::to_string(place.Line)),
      Line(place.Line),
      Place(place) {}

} // namespace lumora
