#pragma once

#include <string>

namespace lumora::tests {

// The message of the exception of class E that the action raises; empty when it raises none.
template <typename E, typename TAction>
std::string MessageOf(TAction action) {
    try {
        action();
    } catch (const E& error) {
        return error.what();
    }
    return {};
}

} // namespace lumora::tests
