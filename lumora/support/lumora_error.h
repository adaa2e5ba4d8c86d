// The base of the package's exceptions; each unit derives its own.
#pragma once

#include "lumora/platform/errors.h"
#include "lumora/support/messages.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace lumora {

// Base of the package's exceptions: a code besides the message.
class EVLumoraError : public Exception {
public:
    EVLumoraError(int code, const std::string& message) : Exception(message), Code(code) {}
    EVLumoraError(int code, std::string_view format, std::initializer_list<std::string_view> arguments)
        : Exception(FormatText(format, arguments)), Code(code) {}

    const int Code;
};

} // namespace lumora
